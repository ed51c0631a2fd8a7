#pragma once

#include "Kestro/Platform/Platform.h"
#include "Kestro/Platform/SessionEvents.h"
#include "Tests/Support/FakeAppearance.h"
#include "Tests/Support/FakeCommands.h"
#include "Tests/Support/FakeCounters.h"
#include "Tests/Support/FakeFetcher.h"
#include "Tests/Support/FakeHotKeys.h"
#include "Tests/Support/FakeKeyboard.h"
#include "Tests/Support/FakeLoginItem.h"
#include "Tests/Support/FakeLoop.h"
#include "Tests/Support/FakePanels.h"
#include "Tests/Support/FakePasteboard.h"
#include "Tests/Support/FakePeers.h"
#include "Tests/Support/FakePointer.h"
#include "Tests/Support/FakePreferences.h"
#include "Tests/Support/FakeProcesses.h"
#include "Tests/Support/FakeScreens.h"
#include "Tests/Support/FakeSounds.h"
#include "Tests/Support/FakeStatusItem.h"
#include "Tests/Support/FakeWindows.h"
#include "Tests/Support/FakeWorkspace.h"
#include "Tests/Support/RecordingLog.h"

/// The ports' fakes, one a header: each holds what a test sets and records what the code under test did.
namespace kestro::test {

/// All fakes as the one value that the application is given.
struct FakePlatform {
    FakeLoop loop;
    FakePreferences preferences{ loop };
    FakeScreens screens;
    FakePointer pointer;
    FakePanels panels;
    FakeAppearance appearance;
    SessionEvents session;
    FakeWorkspace workspace;
    FakeFetcher fetcher;
    FakeCounters counters;
    FakeProcesses processes;
    FakeHotKeys hotKeys;
    FakeKeyboard keyboard;
    FakeStatusItem statusItem;
    FakeLoginItem loginItem;
    FakePeers peers;
    FakeWindows windows;
    FakeCommands commands;
    FakePasteboard pasteboard;
    FakeKeyPoster keyPoster;
    FakeSounds sounds;
    RecordingLog log;

    Platform ports()
    {
        return { loop, preferences, screens, pointer, panels, appearance, session, workspace, fetcher, counters,
            processes, hotKeys, keyboard, statusItem, loginItem, peers, windows, commands, pasteboard, keyPoster,
            sounds, log };
    }
};

} // namespace kestro::test
