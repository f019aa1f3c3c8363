// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The preference file as users and crashes leave it: garbage values, a cut-off file, bytes
// that are not text, a path that cannot be read. The real QSettings store with the core's
// readers: unreadable values give the defaults, and a write keeps every other key.

#include "SettingsPreferenceStore.h"
#include "core/ActionSettings.h"
#include "core/AppPreferences.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

namespace stowly {
namespace {

using Store = linuxdesktop::SettingsPreferenceStore;

const ActionSet kAllActions{DefaultAction::minimize, DefaultAction::hide, DefaultAction::closeWindows,
                            DefaultAction::forceQuit};

class PreferenceFile : public ::testing::Test {
protected:
    // QSettings reads XDG_CONFIG_HOME once per process: one folder for the whole run, made
    // on first use and removed when the process ends.
    static QTemporaryDir& root()
    {
        static QTemporaryDir folder;
        return folder;
    }

    static void SetUpTestSuite()
    {
        ASSERT_TRUE(root().isValid());
        ::setenv("XDG_CONFIG_HOME", QFile::encodeName(root().path()).constData(), 1);
        ASSERT_TRUE(QDir(root().path()).mkpath(QStringLiteral("Stowly")));
    }

    // QSettings keeps a file's contents, and a change it could not save, in a cache shared by
    // every store of the process. A sync against a plain file flushes what an earlier test
    // left there, so each test starts from its own file only.
    void SetUp() override
    {
        writeFile("[General]\n");
        Store flush;
        (void)flush.string("defaultAction");
        removePath();
    }

    static QString path() { return root().filePath(QStringLiteral("Stowly/Stowly.conf")); }

    static void removePath()
    {
        const QString file = path();
        QFileInfo info(file);
        if (info.isDir() && !info.isSymLink())
            QDir(file).removeRecursively();
        else
            QFile::remove(file);
    }

    // Each file gets its own modification time, so that QSettings never takes a new file of
    // the same size for the one it read before.
    static void writeFile(const QByteArray& bytes)
    {
        removePath();
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
        file.close();
        static std::time_t stamp = std::time(nullptr) - 100000;
        stamp += 10;
        const utimbuf times{stamp, stamp};
        ASSERT_EQ(::utime(QFile::encodeName(path()).constData(), &times), 0);
    }

    static QByteArray fileBytes()
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    // The file as another reader sees it, independent of the store under test.
    static QVariant valueInFile(const QString& key)
    {
        QSettings settings(path(), QSettings::IniFormat);
        return settings.value(key);
    }
};

TEST_F(PreferenceFile, ValuesThatAreNotTextGiveTheDefaults)
{
    writeFile("[General]\n"
              "defaultAction=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x8NotAType)\n"
              "enabledActions=@Rect(1 2 3 4)\n");
    Store store;
    EXPECT_FALSE(store.string("defaultAction").has_value());
    EXPECT_FALSE(store.string("enabledActions").has_value());
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::enabledActions(store), kAllActions);
    EXPECT_EQ(ActionSettings::pickerSelection(store), DefaultAction::minimize);
}

TEST_F(PreferenceFile, ReadingGarbageNeverRewritesTheFile)
{
    const QByteArray garbage = "[General]\ndefaultAction=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x8NotAType)\n"
                               "enabledActions=bogus,,Hide\n";
    writeFile(garbage);
    {
        Store store;
        EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
        EXPECT_TRUE(ActionSettings::enabledActions(store).empty()); // text with unknown items only
        EXPECT_TRUE(ActionSettings::pickerItems(store).empty());
    }
    EXPECT_EQ(fileBytes(), garbage);
}

TEST_F(PreferenceFile, ChangingOneSettingKeepsEveryOtherKey)
{
    writeFile("[General]\n"
              "defaultAction=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x8NotAType)\n"
              "enabledActions=@Rect(1 2 3 4)\n"
              "panelOpacity=0.9\n"
              "\n"
              "[Experiments]\n"
              "note=kept as written\n");
    Store store;
    ActionSettings::toggleAction(store, DefaultAction::hide, true); // switch Hide off

    EXPECT_EQ(ActionSettings::enabledActions(store),
              (ActionSet{DefaultAction::minimize, DefaultAction::closeWindows, DefaultAction::forceQuit}));
    EXPECT_EQ(valueInFile(QStringLiteral("enabledActions")).toString(),
              QStringLiteral("closeWindows,forceQuit,minimize"));
    // The unreadable default action was not the one changed: its value stays exactly as it
    // was written, still unreadable, so readers keep the default.
    EXPECT_TRUE(fileBytes().contains("\ndefaultAction=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x8NotAType)\n"));
    EXPECT_FALSE(Store().string("defaultAction").has_value());
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(valueInFile(QStringLiteral("panelOpacity")).toString(), QStringLiteral("0.9"));
    EXPECT_EQ(valueInFile(QStringLiteral("Experiments/note")).toString(), QStringLiteral("kept as written"));

    ActionSettings::setPickerSelection(store, DefaultAction::forceQuit);
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::forceQuit);
    EXPECT_EQ(valueInFile(QStringLiteral("Experiments/note")).toString(), QStringLiteral("kept as written"));
    EXPECT_EQ(valueInFile(QStringLiteral("panelOpacity")).toString(), QStringLiteral("0.9"));
}

// A serialized list whose count asks for about 40 GB (found by fuzz_preferences: Qt's own INI
// reader reserves the count before reading a single element, and runs out of memory).
TEST_F(PreferenceFile, ASerializedValueIsNeverDeserialized)
{
    const QByteArray line = "defaultAction=@Variant(\\0\\0\\0\\v7f\\0\\0\\0\\x12)\n";
    writeFile("[General]\n" + line + "enabledActions=hide\n");
    Store store;
    EXPECT_FALSE(store.string("defaultAction").has_value());
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::enabledActions(store), ActionSet{DefaultAction::hide});
    ActionSettings::toggleAction(store, DefaultAction::minimize, false); // switched on
    EXPECT_EQ(ActionSettings::enabledActions(store), (ActionSet{DefaultAction::minimize, DefaultAction::hide}));
    EXPECT_TRUE(fileBytes().contains("\n" + line)) << fileBytes().constData();
}

// What the store writes, Qt's own INI reader reads as the same text, and so does the store.
TEST_F(PreferenceFile, WrittenTextReadsBackTheSameInQtsReaderAndOurs)
{
    const std::vector<std::string> values{"minimize,hide",
                                          "@starts with an at sign",
                                          "  spaces around  ",
                                          "quote \" backslash \\ semicolon ; hash # equals =",
                                          "tab\tnew line\nreturn\r",
                                          "Grüße, 窓",
                                          ""};
    {
        Store store;
        for (std::size_t i = 0; i < values.size(); ++i)
            store.setString("key" + std::to_string(i), values[i]);
        store.setString("Group/inner", "in a group");
    }
    Store reader;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::string key = "key" + std::to_string(i);
        EXPECT_EQ(reader.string(key), std::optional<std::string>(values[i])) << key;
        EXPECT_EQ(valueInFile(QString::fromStdString(key)).toString().toStdString(), values[i])
            << fileBytes().constData();
    }
    EXPECT_EQ(reader.string("Group/inner"), std::optional<std::string>("in a group"));
    EXPECT_EQ(valueInFile(QStringLiteral("Group/inner")).toString(), QStringLiteral("in a group"));
}

TEST_F(PreferenceFile, AnUnquotedListReadsAsTheTextTheUserTyped)
{
    writeFile("[General]\ndefaultAction=forceQuit\nenabledActions=hide,forceQuit\n");
    Store store;
    EXPECT_EQ(store.string("enabledActions"), std::optional<std::string>("hide,forceQuit"));
    EXPECT_EQ(ActionSettings::enabledActions(store), (ActionSet{DefaultAction::hide, DefaultAction::forceQuit}));
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::forceQuit);
}

TEST_F(PreferenceFile, ACutOffFileKeepsWhatWasWhole)
{
    // Cut in the middle of a serialized value: the whole lines before it still count.
    writeFile("[General]\nenabledActions=hide,minimize\ndefaultAction=@Variant(\\0\\0\\0\\x");
    Store store;
    EXPECT_EQ(ActionSettings::enabledActions(store), (ActionSet{DefaultAction::hide, DefaultAction::minimize}));
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);

    // Cut inside a quoted value: the text is not an action, so the default applies.
    writeFile("[General]\nenabledActions=\"closeWindows\ndefaultAction=\"hi");
    Store cut;
    EXPECT_EQ(AppPreferences::preferredDefaultAction(cut), DefaultAction::minimize);
    EXPECT_LE(ActionSettings::pickerItems(cut).size(), 1u);
}

TEST_F(PreferenceFile, BinaryJunkAndABrokenSectionStillLeaveTheGoodKeys)
{
    QByteArray junk("\x00\x01\xff\xfe\x89PNG\r\n\x1a\n", 12);
    junk += "[Gener\ndefaultAction=hide\n[General]\ndefaultAction=closeWindows\ncolour=\xff\xfe\n";
    writeFile(junk);
    Store store;
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::closeWindows);
    EXPECT_EQ(ActionSettings::enabledActions(store), kAllActions); // absent: the default
    ActionSettings::toggleAction(store, DefaultAction::minimize, true);
    EXPECT_EQ(ActionSettings::enabledActions(store),
              (ActionSet{DefaultAction::hide, DefaultAction::closeWindows, DefaultAction::forceQuit}));
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::closeWindows);
}

TEST_F(PreferenceFile, TextThatIsNotUtf8NamesNoAction)
{
    writeFile("[General]\ndefaultAction=hid\xff\xfe\nenabledActions=minimize,\xc3(\n");
    Store store;
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::enabledActions(store), ActionSet{DefaultAction::minimize});
}

TEST_F(PreferenceFile, AFolderWhereTheFileShouldBeGivesDefaultsAndSurvivesAWrite)
{
    ASSERT_TRUE(QDir().mkpath(path() + QStringLiteral("/inside")));
    Store store;
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::enabledActions(store), kAllActions);
    ActionSettings::setPickerSelection(store, DefaultAction::hide); // cannot be saved
    EXPECT_TRUE(QFileInfo(path() + QStringLiteral("/inside")).isDir());
    EXPECT_EQ(ActionSettings::enabledActions(store), kAllActions);
}

TEST_F(PreferenceFile, ALinkToItselfGivesDefaults)
{
    ASSERT_EQ(::symlink(QFile::encodeName(path()).constData(), QFile::encodeName(path()).constData()), 0);
    Store store;
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::enabledActions(store), kAllActions);
}

TEST_F(PreferenceFile, AnEmptyFileGivesDefaults)
{
    writeFile(QByteArray());
    Store store;
    EXPECT_EQ(AppPreferences::preferredDefaultAction(store), DefaultAction::minimize);
    EXPECT_EQ(ActionSettings::enabledActions(store), kAllActions);
}

} // namespace
} // namespace stowly
