#include "PlasmaWindowManagement.h"
#include "TestBed.h"
#include "WaylandConnection.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

int main(int argc, char** argv)
{
    // A copy of this program at another path has no desktop entry: it reports whether KWin
    // offered it the interface anyway.
    if (argc == 2 && std::strcmp(argv[1], "--probe-grant") == 0) {
        QCoreApplication app(argc, argv);
        stowly::kwin::WaylandConnection connection;
        stowly::kwin::PlasmaWindowManagement management(connection);
        std::printf("%s\n", !connection.isConnected() ? "no-connection"
                            : management.isGranted()  ? "granted"
                                                      : "denied");
        return 0;
    }
    QCoreApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
