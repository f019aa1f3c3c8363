// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

// AppModel owns a QTimer and queues its refreshes as events, so every test runs
// with one application object alive.
int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    // Death tests re-run the binary instead of forking a process that holds Qt state.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    QCoreApplication app(argc, argv);
    // Name ties in the app list are broken by a localized comparison; pin the locale so
    // the expected orders hold whatever the machine's LANG is.
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    return RUN_ALL_TESTS();
}
