// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

// The two name orders of the app list, in whatever locale the run has: this file is also
// built into a test program that runs under LC_ALL=C with the locale left as it is.

#include "NameCollator.h"
#include "TestSupport.h"
#include "WindowMinimizer.h"

#include <gtest/gtest.h>

namespace stowly {
namespace {

using testing::q;

// Deseret, beyond the Basic Multilingual Plane, has capital and small letters:
// U+10400 LONG I and its small form U+10428.
const char* const kDeseretCapitalI = "\xf0\x90\x90\x80";
const char* const kDeseretSmallI = "\xf0\x90\x90\xa8";
// U+FF21 FULLWIDTH LATIN CAPITAL LETTER A (one UTF-16 unit) and U+1D400 MATHEMATICAL BOLD
// CAPITAL A (a surrogate pair, whose first unit 0xD835 is below 0xFF21).
const char* const kFullwidthA = "\xef\xbc\xa1";
const char* const kBoldA = "\xf0\x9d\x90\x80";

class NameOrder : public ::testing::Test {
protected:
    fakes::FakeWorkspace workspace;
    fakes::FakeAccessibility accessibility;
    fakes::FakeProcessTable processTable;
    WindowMinimizer minimizer{workspace, accessibility, processTable};

    // Apps that all use the same memory, so that names alone decide.
    void addApps(const std::vector<std::string>& names)
    {
        std::int32_t pid = 100;
        for (const auto& name : names) {
            workspace.addApp(pid, name);
            processTable.add(pid, "proc" + std::to_string(pid), 4096);
            ++pid;
        }
    }

    std::vector<QString> listed()
    {
        std::vector<QString> names;
        for (const auto& info : minimizer.runningApps())
            names.push_back(info.name);
        return names;
    }

    std::vector<QString> managed()
    {
        std::vector<QString> names;
        for (const auto& app : minimizer.managedApps())
            names.push_back(QString::fromStdString(app->localizedName().value_or("")));
        return names;
    }
};

TEST_F(NameOrder, ListBreaksTiesCaseInsensitivelyAndManagedOrderIsCaseSensitive)
{
    addApps({"zebra", "Cherry", "alpha", "Zeta", "banana", "Apple"});
    EXPECT_EQ(listed(),
              (std::vector<QString>{q("alpha"), q("Apple"), q("banana"), q("Cherry"), q("zebra"), q("Zeta")}));
    EXPECT_EQ(managed(),
              (std::vector<QString>{q("Apple"), q("Cherry"), q("Zeta"), q("alpha"), q("banana"), q("zebra")}));
}

TEST_F(NameOrder, ListCollatesAccentedLettersWithTheirBaseLetter)
{
    // By code point "É" (U+00C9) would follow "Z"; collated it sits among the E's.
    addApps({"Zulu",
             "\xc3\x89"
             "clair",
             "Eclipse", "echo"});
    EXPECT_EQ(listed(), (std::vector<QString>{q("echo"),
                                              q("\xc3\x89"
                                                "clair"),
                                              q("Eclipse"), q("Zulu")}));
}

TEST_F(NameOrder, NamesBeyondTheBasicPlaneInTheList)
{
    // Case-insensitive: the two Deseret letters tie, so the second letter decides.
    addApps({std::string(kDeseretCapitalI) + "b", std::string(kDeseretSmallI) + "a"});
    EXPECT_EQ(listed(), (std::vector<QString>{q(kDeseretSmallI) + q("a"), q(kDeseretCapitalI) + q("b")}));
}

TEST_F(NameOrder, NamesBeyondTheBasicPlaneInTheManagedOrder)
{
    // Case-sensitive by scalar value: U+FF21, U+10400, U+10428, U+1D400, although UTF-16
    // units would put every surrogate pair before U+FF21.
    addApps({std::string(kDeseretSmallI) + "a", kBoldA, std::string(kDeseretCapitalI) + "b", kFullwidthA});
    EXPECT_EQ(managed(), (std::vector<QString>{q(kFullwidthA), q(kDeseretCapitalI) + q("b"), q(kDeseretSmallI) + q("a"),
                                               q(kBoldA)}));
}

TEST(NameCollator, CollatesEvenForTheCLocale)
{
    const NameCollator collator{QLocale::c()};
    EXPECT_TRUE(collator.usesCollation());
    EXPECT_LT(collator.compare(q("alpha"), q("Zeta")), 0);
    EXPECT_GT(collator.compare(q("Zeta"), q("alpha")), 0);
    EXPECT_EQ(collator.compare(q("Mail"), q("MAIL")), 0);
    EXPECT_LT(collator.compare(q("\xc3\xa9t\xc3\xa9"), q("zoo")), 0);
}

TEST(NameCollator, UserLocaleCollatesToo)
{
    const NameCollator collator;
    EXPECT_TRUE(collator.usesCollation());
    EXPECT_LT(collator.compare(q("alpha"), q("Zeta")), 0);
    EXPECT_LT(collator.compare(q("Beta"), q("gamma")), 0);
}

TEST(NameCollator, CaseFoldingFallbackIgnoresCaseAndComparesScalars)
{
    EXPECT_LT(NameCollator::compareCaseFolded(q("alpha"), q("Zeta")), 0);
    EXPECT_GT(NameCollator::compareCaseFolded(q("Zeta"), q("alpha")), 0);
    EXPECT_EQ(NameCollator::compareCaseFolded(q("MAIL"), q("mail")), 0);
    // Full case folding: "Straße" and "STRASSE" are the same name.
    EXPECT_EQ(NameCollator::compareCaseFolded(q("Stra\xc3\x9f"
                                                "e"),
                                              q("STRASSE")),
              0);
    // Canonically equivalent spellings tie.
    EXPECT_EQ(NameCollator::compareCaseFolded(q("Cafe\xcc\x81"), q("caf\xc3\xa9")), 0);
    EXPECT_LT(NameCollator::compareCaseFolded(q(kDeseretSmallI) + q("a"), q(kDeseretCapitalI) + q("b")), 0);
    EXPECT_LT(NameCollator::compareCaseFolded(q(kFullwidthA), q(kBoldA)), 0);
    EXPECT_LT(NameCollator::compareCaseFolded(q("app"), q("Apple")), 0); // a prefix first
    EXPECT_GT(NameCollator::compareCaseFolded(q("Apple"), q("app")), 0);
}

} // namespace
} // namespace stowly
