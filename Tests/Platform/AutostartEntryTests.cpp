#include "Helpers.h"
#include "Platforms/Linux/System/AutostartEntry.h"
#include "Platforms/Linux/System/GioPointer.h"

#include <QDir>
#include <QSignalSpy>

namespace kestro {
namespace {

using namespace test;

class AutostartEntryTest : public testing::Test {
protected:
    void write(const QByteArray& content) const
    {
        QDir(m_home.path()).mkpath(u".config/autostart"_s);
        writeFile(m_path, content);
    }

    const QTemporaryDir m_home;
    const QString m_path = m_home.filePath(u".config/autostart/kestro.desktop"_s);
    AutostartEntry m_entry{ m_home.path(), {}, u"/opt/kestro"_s };
};

TEST_F(AutostartEntryTest, KnowsWhetherTheDesktopStartsIt)
{
    const QByteArray ours = "[Desktop Entry]\nType=Application\nName=Kestro\nExec=kestro\n";
    const std::pair<QByteArray, bool> cases[] = {
        { ours, true },
        { ours + "X-GNOME-Autostart-enabled=true\n", true },
        { ours + "X-GNOME-Autostart-enabled=false\n", false },
        { ours + "Hidden=true\n", false },
        { ours + "Hidden=false\n", true },
        { ours + "Hidden=perhaps\nX-GNOME-Autostart-enabled=perhaps\n", true },
        { "garbage", false },
        { "", false },
    };
    EXPECT_FALSE(m_entry.isEnabled());
    EXPECT_FALSE(QFile::exists(m_home.filePath(u".config"_s))) << "looking makes nothing";
    for (const auto& [content, enabled] : cases) {
        write(content);
        EXPECT_EQ(m_entry.isEnabled(), enabled) << content.toStdString();
        EXPECT_EQ(m_entry.setEnabled(!enabled), std::nullopt);
        EXPECT_EQ(m_entry.isEnabled(), !enabled) << content.toStdString();
    }
    EXPECT_EQ(m_entry.setEnabled(false), std::nullopt);
    EXPECT_EQ(m_entry.setEnabled(false), std::nullopt) << "off already";
    EXPECT_FALSE(QFile::exists(m_path));
}

TEST_F(AutostartEntryTest, NamesTheProgramSoThatItIsFoundAgain)
{
    for (const char* const program : { "/opt/kestro", "/with space/k", "/quo\"te/k", "/dol$lar`tick/k",
             "/back\\slash/k", "/per%cent %U/k", "/\xC3\xBCmlaut/k" }) {
        AutostartEntry entry(m_home.path(), {}, QString::fromUtf8(program));
        ASSERT_EQ(entry.setEnabled(true), std::nullopt);
        const GioPointer<GKeyFile> file(g_key_file_new());
        ASSERT_TRUE(
            g_key_file_load_from_file(file.get(), QFile::encodeName(m_path).constData(), G_KEY_FILE_NONE, nullptr));
        const GioText line(g_key_file_get_string(file.get(), G_KEY_FILE_DESKTOP_GROUP, "Exec", nullptr));
        char** words = nullptr;
        int count = 0;
        ASSERT_TRUE(g_shell_parse_argv(line.get(), &count, &words, nullptr)) << program;
        EXPECT_EQ(count, 1);
        EXPECT_EQ(QByteArray(words[0]).replace("%%", "%"), program);
        EXPECT_EQ(QByteArray(words[0]).count("%"), 2 * QByteArray(program).count("%"));
        g_strfreev(words);
    }
}

TEST_F(AutostartEntryTest, SaysWhatStandsInTheWay)
{
    const QString config = m_home.filePath(u"config"_s);
    AutostartEntry entry(m_home.path(), config, u"/opt/kestro"_s);
    writeFile(config, "a file");
    EXPECT_EQ(entry.setEnabled(true),
        u"Couldn't create the folder “autostart” in “config” — a file stands where a folder should be."_s);
    EXPECT_FALSE(entry.isEnabled());
    EXPECT_EQ(entry.setEnabled(false), std::nullopt);
    QFile::remove(config);
    QDir().mkpath(config + u"/autostart/kestro.desktop"_s);
    for (const bool on : { true, false })
        EXPECT_EQ(entry.setEnabled(on),
            u"Couldn't save “kestro.desktop” in “autostart” — a folder of that name is in the way."_s);
}

TEST_F(AutostartEntryTest, TellsChangesFromAnywhereWhileSomebodyListens)
{
    const auto openFiles = [] { return QDir(u"/proc/self/fd"_s).entryList(QDir::AllEntries | QDir::System).size(); };
    m_entry.isEnabled();
    const auto before = openFiles();
    {
        QSignalSpy changed(&m_entry, &LoginItem::changed);
        EXPECT_FALSE(QFile::exists(m_home.filePath(u".config"_s))) << "watching makes nothing";
        write("[Desktop Entry]\nName=Kestro\n");
        EXPECT_TRUE(waitFor([&] { return changed.size() == 1; })) << "made with its folders";
        QFile::rename(m_path, m_path + u".away"_s);
        EXPECT_TRUE(waitFor([&] { return changed.size() == 2; }));
        EXPECT_EQ(m_entry.setEnabled(true), std::nullopt);
        EXPECT_EQ(changed.size(), 3) << "by ourselves";
        QDir(m_home.filePath(u".config"_s)).removeRecursively();
        EXPECT_TRUE(waitFor([&] { return changed.size() == 4; }));
        write("[Desktop Entry]\nName=Kestro\n");
        EXPECT_TRUE(waitFor([&] { return changed.size() == 5; })) << "after its folders had gone";
        write("[Desktop Entry]\nName=Kestro\nHidden=true\n");
        EXPECT_TRUE(waitFor([&] { return changed.size() == 6; })) << "written in place";
    }
    EXPECT_TRUE(waitFor([&] { return openFiles() == before; })) << "nobody listens";
}

} // namespace
} // namespace kestro
