// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The model at rest, for scripts/bench when the full program is not built: a core
// application, the Linux backend and one AppModel whose one-second refresh runs in the
// event loop, with no window of its own, until terminated.

#include "BenchBackend.h"

#include "AppModel.h"

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    auto backend = stowly::bench::makeBenchBackend();
    stowly::AppModel model(backend->platform());
    return QCoreApplication::exec();
}
