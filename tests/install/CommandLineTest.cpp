// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// Parsing the command line: what each command becomes, and what bad usage says.
#include "CommandLine.h"

#include <gtest/gtest.h>

using stowly::CommandRequest;
using stowly::parseCommandLine;

namespace {

QStringList args(std::initializer_list<const char*> words)
{
    QStringList list;
    for (const char* word : words)
        list << QString::fromUtf8(word);
    return list;
}

CommandRequest::Kind kindOf(std::initializer_list<const char*> words)
{
    const auto result = parseCommandLine(args(words));
    EXPECT_TRUE(result.request.has_value()) << result.error.toStdString();
    return result.request ? result.request->kind : CommandRequest::Kind::runTray;
}

std::string errorOf(std::initializer_list<const char*> words)
{
    const auto result = parseCommandLine(args(words));
    EXPECT_FALSE(result.request.has_value());
    return result.error.toStdString();
}

} // namespace

TEST(CommandLine, NoArgumentsRunsTheTray)
{
    EXPECT_EQ(kindOf({}), CommandRequest::Kind::runTray);
}

TEST(CommandLine, EveryCommandIsRecognised)
{
    EXPECT_EQ(kindOf({"minimize-all"}), CommandRequest::Kind::minimizeAll);
    EXPECT_EQ(kindOf({"hide-all"}), CommandRequest::Kind::hideAll);
    EXPECT_EQ(kindOf({"close-all"}), CommandRequest::Kind::closeAll);
    EXPECT_EQ(kindOf({"force-quit-all", "--yes"}), CommandRequest::Kind::forceQuitAll);
    EXPECT_EQ(kindOf({"--yes", "force-quit-all"}), CommandRequest::Kind::forceQuitAll);
    EXPECT_EQ(kindOf({"list"}), CommandRequest::Kind::list);
    EXPECT_EQ(kindOf({"--help"}), CommandRequest::Kind::help);
    EXPECT_EQ(kindOf({"-h"}), CommandRequest::Kind::help);
    EXPECT_EQ(kindOf({"--version"}), CommandRequest::Kind::version);
    EXPECT_EQ(kindOf({"list", "--help"}), CommandRequest::Kind::help);
}

TEST(CommandLine, ListTakesJson)
{
    const auto result = parseCommandLine(args({"list", "--json"}));
    ASSERT_TRUE(result.request);
    EXPECT_TRUE(result.request->json);
    EXPECT_FALSE(parseCommandLine(args({"list"})).request->json);
}

TEST(CommandLine, OneAppCommandsTakeExactlyOneTarget)
{
    for (const char* command : {"open", "close", "force-quit"}) {
        const auto result = parseCommandLine(args({command, "Text Editor"}));
        ASSERT_TRUE(result.request) << command;
        EXPECT_EQ(result.request->target, QStringLiteral("Text Editor"));
        EXPECT_NE(errorOf({command}).find("needs the name or process id"), std::string::npos);
        EXPECT_NE(errorOf({command, "a", "b"}).find("one app only"), std::string::npos);
    }
    EXPECT_EQ(parseCommandLine(args({"open", "--", "-odd-name"})).request->target, QStringLiteral("-odd-name"));
    EXPECT_NE(errorOf({"open", " "}).find("cannot be empty"), std::string::npos);
}

TEST(CommandLine, ForceQuitAllAsksForConfirmation)
{
    EXPECT_NE(errorOf({"force-quit-all"}).find("add --yes"), std::string::npos);
}

TEST(CommandLine, BadUsageNamesTheProblem)
{
    EXPECT_NE(errorOf({"frobnicate"}).find("Unknown command 'frobnicate'"), std::string::npos);
    EXPECT_NE(errorOf({"--frobnicate"}).find("Unknown option '--frobnicate'"), std::string::npos);
    EXPECT_NE(errorOf({"minimize-all", "now"}).find("Unexpected argument 'now'"), std::string::npos);
    EXPECT_NE(errorOf({"minimize-all", "--json"}).find("--json goes with 'list'"), std::string::npos);
    EXPECT_NE(errorOf({"hide-all", "--yes"}).find("--yes goes with 'force-quit-all'"), std::string::npos);
    EXPECT_NE(errorOf({"--json"}).find("need a command"), std::string::npos);
    EXPECT_NE(errorOf({"frobnicate"}).find("stowly --help"), std::string::npos);
}

TEST(CommandLine, HelpNamesEveryCommandAndVersionTheNumber)
{
    const QString usage = stowly::usageText();
    for (const char* command : {"minimize-all", "hide-all", "close-all", "force-quit-all --yes", "list [--json]",
                                "open NAME-OR-PID", "close NAME-OR-PID", "force-quit NAME-OR-PID"})
        EXPECT_TRUE(usage.contains(QString::fromUtf8(command))) << command;
    EXPECT_EQ(stowly::versionText(), QStringLiteral("stowly " STOWLY_VERSION "\n"));
}
