// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include <QCoreApplication>
#include <QLocale>

#include <gtest/gtest.h>

#include <cstdio>

// The name-order tests once more, with the locale the environment gives (ctest sets
// LC_ALL=C): nothing pins a friendlier one here.
int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    QCoreApplication app(argc, argv);
    if (QLocale::system().language() != QLocale::C) {
        std::fprintf(stderr, "this run must see the C locale (LC_ALL=C), not %s\n",
                     qPrintable(QLocale::system().name()));
        return 1;
    }
    return RUN_ALL_TESTS();
}
