// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "CommandLine.h"

#include "AppModel.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>

#include <cstdio>
#include <vector>

namespace stowly {

namespace {

struct Subcommand {
    const char* name;
    CommandRequest::Kind kind;
    bool takesTarget;
};

constexpr Subcommand kSubcommands[] = {
    {"minimize-all", CommandRequest::Kind::minimizeAll, false},
    {"hide-all", CommandRequest::Kind::hideAll, false},
    {"close-all", CommandRequest::Kind::closeAll, false},
    {"force-quit-all", CommandRequest::Kind::forceQuitAll, false},
    {"list", CommandRequest::Kind::list, false},
    {"open", CommandRequest::Kind::open, true},
    {"close", CommandRequest::Kind::close, true},
    {"force-quit", CommandRequest::Kind::forceQuit, true},
};

void printTo(FILE* stream, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), stream);
    std::fflush(stream);
}

ParseResult failure(const QString& error)
{
    return {std::nullopt, error + QStringLiteral("\nTry 'stowly --help'.")};
}

int finish(const AppModel& model)
{
    const bool succeeded = model.lastCommandSucceeded();
    printTo(succeeded ? stdout : stderr, model.lastResultMessage() + QLatin1Char('\n'));
    return succeeded ? exitSuccess : exitNothingDone;
}

QString stateOf(const RunningAppInfo& app)
{
    return app.status();
}

int listApps(AppModel& model, bool json)
{
    const auto& apps = model.runningApps();
    if (json) {
        QJsonArray array;
        for (const RunningAppInfo& app : apps) {
            QJsonObject object{{QStringLiteral("pid"), app.id},
                               {QStringLiteral("name"), app.name},
                               {QStringLiteral("state"), stateOf(app)},
                               {QStringLiteral("hidden"), app.isHidden},
                               {QStringLiteral("active"), app.isActive}};
            object.insert(QStringLiteral("memoryBytes"),
                          app.memoryBytes ? QJsonValue(static_cast<double>(*app.memoryBytes)) : QJsonValue());
            array.append(object);
        }
        printTo(stdout, QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Indented)));
        return exitSuccess;
    }
    QString table;
    QTextStream out(&table);
    out << qSetFieldWidth(8) << Qt::right << "PID" << qSetFieldWidth(0) << "  " << qSetFieldWidth(7) << Qt::left
        << "STATE" << qSetFieldWidth(0) << "  " << qSetFieldWidth(16) << Qt::right << "MEMORY" << qSetFieldWidth(0)
        << "  NAME\n";
    for (const RunningAppInfo& app : apps) {
        out << qSetFieldWidth(8) << Qt::right << app.id << qSetFieldWidth(0) << "  " << qSetFieldWidth(7) << Qt::left
            << stateOf(app) << qSetFieldWidth(0) << "  " << qSetFieldWidth(16) << Qt::right << app.formattedRAM()
            << qSetFieldWidth(0) << "  " << app.name << "\n";
    }
    out.flush();
    printTo(stdout, table);
    if (apps.empty()) {
        printTo(stderr, QStringLiteral("No open apps.\n"));
        return exitNothingDone;
    }
    return exitSuccess;
}

// The one app a name or process id means, or the reason there is none.
struct TargetMatch {
    std::vector<RunningAppInfo> apps;
    bool byPid = false;
};

TargetMatch findTarget(const std::vector<RunningAppInfo>& apps, const QString& target)
{
    TargetMatch match;
    bool isNumber = false;
    const int pid = target.toInt(&isNumber);
    match.byPid = isNumber;
    for (const RunningAppInfo& app : apps) {
        if (isNumber ? app.id == pid : app.name.compare(target, Qt::CaseInsensitive) == 0)
            match.apps.push_back(app);
    }
    return match;
}

int actOnOne(const CommandRequest& request, AppModel& model)
{
    const TargetMatch match = findTarget(model.runningApps(), request.target);
    if (match.apps.empty()) {
        printTo(stderr, match.byPid ? QStringLiteral("Process %1 is not an open app.\n").arg(request.target)
                                    : QStringLiteral("No open app is called \"%1\".\n").arg(request.target));
        return exitNothingDone;
    }
    if (match.apps.size() > 1) {
        QString text = QStringLiteral("\"%1\" matches %2 apps; nothing was done. Name one by its process id:\n")
                           .arg(request.target)
                           .arg(match.apps.size());
        for (const RunningAppInfo& app : match.apps)
            text += QStringLiteral("  %1  %2\n").arg(app.id).arg(app.name);
        printTo(stderr, text);
        return exitBadUsage;
    }
    const RunningAppInfo& app = match.apps.front();
    switch (request.kind) {
    case CommandRequest::Kind::open: model.openApp(app); break;
    case CommandRequest::Kind::close: model.terminateApp(app); break;
    default: model.forceTerminateApp(app); break;
    }
    return finish(model);
}

} // namespace

ParseResult parseCommandLine(const QStringList& arguments)
{
    CommandRequest request;
    bool haveCommand = false;
    bool yes = false;
    bool takesTarget = false;
    QStringList positional;
    bool optionsEnded = false;
    for (const QString& argument : arguments) {
        if (!optionsEnded && argument == QLatin1String("--")) {
            optionsEnded = true;
            continue;
        }
        if (!optionsEnded && argument.startsWith(QLatin1Char('-')) && argument.size() > 1) {
            if (argument == QLatin1String("-h") || argument == QLatin1String("--help"))
                return {CommandRequest{CommandRequest::Kind::help, false, {}}, {}};
            if (argument == QLatin1String("-v") || argument == QLatin1String("--version"))
                return {CommandRequest{CommandRequest::Kind::version, false, {}}, {}};
            if (argument == QLatin1String("--json"))
                request.json = true;
            else if (argument == QLatin1String("--yes") || argument == QLatin1String("-y"))
                yes = true;
            else
                return failure(QStringLiteral("Unknown option '%1'.").arg(argument));
            continue;
        }
        if (!haveCommand) {
            bool known = false;
            for (const Subcommand& subcommand : kSubcommands) {
                if (argument == QLatin1String(subcommand.name)) {
                    request.kind = subcommand.kind;
                    takesTarget = subcommand.takesTarget;
                    known = true;
                }
            }
            if (!known)
                return failure(QStringLiteral("Unknown command '%1'.").arg(argument));
            haveCommand = true;
            continue;
        }
        positional << argument;
    }

    if (!haveCommand) {
        if (request.json || yes)
            return failure(QStringLiteral("Options need a command."));
        return {request, {}};
    }
    if (request.json && request.kind != CommandRequest::Kind::list)
        return failure(QStringLiteral("--json goes with 'list' only."));
    if (yes && request.kind != CommandRequest::Kind::forceQuitAll)
        return failure(QStringLiteral("--yes goes with 'force-quit-all' only."));
    if (takesTarget) {
        if (positional.size() != 1)
            return failure(positional.isEmpty() ? QStringLiteral("This command needs the name or process id of an app.")
                                                : QStringLiteral("Name one app only."));
        if (positional.front().trimmed().isEmpty())
            return failure(QStringLiteral("An app's name cannot be empty."));
        request.target = positional.front();
    } else if (!positional.isEmpty()) {
        return failure(QStringLiteral("Unexpected argument '%1'.").arg(positional.front()));
    }
    if (request.kind == CommandRequest::Kind::forceQuitAll && !yes)
        return failure(QStringLiteral("force-quit-all ends every other app without saving; add --yes to confirm."));
    return {request, {}};
}

QString usageText()
{
    return QStringLiteral("Usage: stowly [COMMAND] [OPTIONS]\n"
                          "\n"
                          "Without a command, Stowly puts its icon in the system tray (or opens the panel of\n"
                          "the copy that already runs).\n"
                          "\n"
                          "Commands:\n"
                          "  minimize-all              minimize the windows of every other app\n"
                          "  hide-all                  hide every other app\n"
                          "  close-all                 ask every other app's windows to close\n"
                          "  force-quit-all --yes      force quit every other app\n"
                          "  list [--json]             list the open apps\n"
                          "  open NAME-OR-PID          bring one app forward\n"
                          "  close NAME-OR-PID         ask one app to quit\n"
                          "  force-quit NAME-OR-PID    force quit one app\n"
                          "\n"
                          "Options:\n"
                          "  -h, --help                show this help\n"
                          "  -v, --version             show the version\n"
                          "\n"
                          "Exit status: 0 done, 1 nothing to do or no access, 2 bad usage.\n");
}

QString versionText()
{
    return QStringLiteral("stowly " STOWLY_VERSION "\n");
}

int runCommand(const CommandRequest& request, AppModel& model)
{
    switch (request.kind) {
    case CommandRequest::Kind::minimizeAll: model.minimizeAllWindows(); return finish(model);
    case CommandRequest::Kind::hideAll: model.hideAllApps(); return finish(model);
    case CommandRequest::Kind::closeAll: model.closeAllWindows(); return finish(model);
    case CommandRequest::Kind::forceQuitAll: model.forceQuitAllApps(); return finish(model);
    case CommandRequest::Kind::list: model.refreshRunningApps(); return listApps(model, request.json);
    case CommandRequest::Kind::open:
    case CommandRequest::Kind::close:
    case CommandRequest::Kind::forceQuit: model.refreshRunningApps(); return actOnOne(request, model);
    case CommandRequest::Kind::help: printTo(stdout, usageText()); return exitSuccess;
    case CommandRequest::Kind::version: printTo(stdout, versionText()); return exitSuccess;
    case CommandRequest::Kind::runTray: break;
    }
    return exitBadUsage;
}

} // namespace stowly
