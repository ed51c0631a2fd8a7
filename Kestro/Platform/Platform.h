#pragma once

namespace kestro {

class Appearance;
class CommandRunner;
class DesktopWindows;
class Fetcher;
class HotKeys;
class KeyPoster;
class KeyboardGrabs;
class Log;
class LoginItem;
class MainLoop;
class Panels;
class Pasteboard;
class PeerInspector;
class Pointer;
class PreferenceStore;
class ProcessTable;
class Screens;
class SessionEvents;
class Sounds;
class StatusItem;
class SystemCounters;
class Workspace;

/// Every service that the application asks of its platform. main.cpp builds them; they outlive all that uses them.
struct Platform {
    MainLoop& loop;
    PreferenceStore& preferences;
    Screens& screens;
    Pointer& pointer;
    Panels& panels;
    Appearance& appearance;
    SessionEvents& session;
    Workspace& workspace;
    Fetcher& fetcher;
    SystemCounters& counters;
    ProcessTable& processes;
    HotKeys& hotKeys;
    KeyboardGrabs& keyboard;
    StatusItem& statusItem;
    LoginItem& loginItem;
    PeerInspector& peers;
    DesktopWindows& windows;
    CommandRunner& commands;
    Pasteboard& pasteboard;
    KeyPoster& keyPoster;
    Sounds& sounds;
    Log& log;
};

} // namespace kestro
