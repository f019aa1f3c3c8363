// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

#include <QString>
#include <QStringList>

#include <optional>

namespace stowly {

class AppModel;

// What the arguments ask for. Parsing needs no display, so --help, --version and bad usage
// answer anywhere.
struct CommandRequest {
    enum class Kind {
        runTray,
        help,
        version,
        minimizeAll,
        hideAll,
        closeAll,
        forceQuitAll,
        list,
        open,
        close,
        forceQuit
    };
    Kind kind = Kind::runTray;
    bool json = false; // list
    QString target;    // open, close, force-quit: a name or a process id
};

// Exit statuses shared by every command.
enum ExitStatus { exitSuccess = 0, exitNothingDone = 1, exitBadUsage = 2 };

struct ParseResult {
    std::optional<CommandRequest> request; // absent: bad usage, see error
    QString error;
};

// arguments excludes the program name.
ParseResult parseCommandLine(const QStringList& arguments);

QString usageText();
QString versionText();

// Runs one command against the model and prints its outcome: the model's result message on
// stdout when it succeeded, on stderr otherwise. Answers the exit status.
int runCommand(const CommandRequest& request, AppModel& model);

} // namespace stowly
