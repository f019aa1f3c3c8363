// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#pragma once

// Shared helpers: readable QString failures and a model built over the fakes.

#include "AppModel.h"
#include "FakePlatform.h"

#include <QString>

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace stowly::testing {

inline QString q(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

// Labels of the windows whose minimized flag was written, in call order.
inline std::vector<std::string> logEntriesStartingWith(const std::vector<std::string>& log, const std::string& prefix)
{
    std::vector<std::string> found;
    for (const auto& entry : log) {
        if (entry.rfind(prefix, 0) == 0)
            found.push_back(entry);
    }
    return found;
}

// Fakes plus the Platform view the model keeps a reference to; both outlive the model.
class ModelTest : public ::testing::Test {
protected:
    fakes::FakePlatform fakes;
    Platform platform = fakes.platform();
    std::unique_ptr<AppModel> model;

    AppModel& makeModel()
    {
        model = std::make_unique<AppModel>(platform);
        return *model;
    }
};

} // namespace stowly::testing
