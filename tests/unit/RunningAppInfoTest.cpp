// SPDX-FileCopyrightText: 2026 The Stowly developers
//
// SPDX-License-Identifier: MIT

#include "RunningAppInfo.h"
#include "ByteCountFormatter.h"
#include "TestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <map>

namespace stowly {
namespace {

using testing::q;

RunningAppInfo record(std::int32_t id, const char* name, bool hidden, bool active,
                      std::optional<std::uint64_t> memory = std::nullopt)
{
    return RunningAppInfo{id, q(name), nullptr, hidden, active, memory};
}

TEST(RunningAppInfo, HiddenAndActiveReportsHidden)
{
    EXPECT_EQ(record(1, "Notes", true, true).status(), q("Hidden"));
}

TEST(RunningAppInfo, HiddenOnlyReportsHidden)
{
    EXPECT_EQ(record(1, "Notes", true, false).status(), q("Hidden"));
}

TEST(RunningAppInfo, ActiveOnlyReportsActive)
{
    EXPECT_EQ(record(1, "Notes", false, true).status(), q("Active"));
}

TEST(RunningAppInfo, NeitherHiddenNorActiveReportsOpen)
{
    EXPECT_EQ(record(1, "Notes", false, false).status(), q("Open"));
}

TEST(RunningAppInfo, AbsentMemoryShowsRamUnavailable)
{
    EXPECT_EQ(record(1, "Notes", false, false).formattedRAM(), q("RAM unavailable"));
}

TEST(RunningAppInfo, ZeroMemoryIsMeasuredAndFormattedNotUnavailable)
{
    const auto text = record(1, "Notes", false, false, 0).formattedRAM();
    EXPECT_NE(text, q("RAM unavailable"));
    EXPECT_EQ(text, formatMemoryByteCount(0));
    EXPECT_EQ(text, q("Zero KB"));
}

TEST(RunningAppInfo, MeasuredMemoryUsesTheMemoryStyleFormatter)
{
    EXPECT_EQ(record(1, "Notes", false, false, 1572864).formattedRAM(), q("1.5 MB"));
}

TEST(RunningAppInfo, SameIdDifferentNamesAreTheSameRow)
{
    // Rows are keyed by process identifier alone; the record keeps both names as given.
    const auto first = record(77, "Notes", false, false);
    const auto second = record(77, "Notes (renamed)", true, false, 10);
    EXPECT_EQ(first.id, second.id);
    std::map<std::int32_t, RunningAppInfo> rows;
    rows.insert_or_assign(first.id, first);
    rows.insert_or_assign(second.id, second);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows.at(77).name, q("Notes (renamed)"));
}

TEST(RunningAppInfo, KeepsEveryFieldAsConstructed)
{
    auto icon = std::make_shared<AppIcon>(AppIcon{2, 1, {0xff000000u, 0xffffffffu}});
    const RunningAppInfo info{9, q("Files"), icon, false, true, 4096};
    EXPECT_EQ(info.id, 9);
    EXPECT_EQ(info.name, q("Files"));
    EXPECT_EQ(info.icon, icon);
    EXPECT_FALSE(info.isHidden);
    EXPECT_TRUE(info.isActive);
    EXPECT_EQ(info.memoryBytes, std::optional<std::uint64_t>(4096));
}

TEST(RunningAppInfoDeathTest, MemoryAboveLargestSignedCountIsAProgrammingError)
{
    const auto info = record(1, "Huge", false, false, std::uint64_t(std::numeric_limits<std::int64_t>::max()) + 1);
    EXPECT_DEATH((void)info.formattedRAM(), "");
}

// The points below rest on Apple's documented NSByteCountFormatter behaviour:
//  [memory]   CountStyle.memory "uses the binary style" (1 KB = 1,024 bytes).
//  [adaptive] isAdaptive, default true: "0 fraction digits for bytes and KB; 1 fraction
//             digits for MB; 2 for GB and above".
//  [nopad]    zeroPadsFractionDigits, default false: "1.2 GB", not "1.20 GB".
//  [zero]     allowsNonnumericFormatting, default true: zero "may be displayed as Zero KB".
//  [units]    Units names bytes, KB, MB, GB, TB, PB, EB as the units the formatter picks
//             from by magnitude.
// Rounding ties are avoided except where both usual rounding rules agree.

TEST(ByteCountFormatter, ZeroIsZeroKB)
{
    EXPECT_EQ(formatMemoryByteCount(0), q("Zero KB")); // [zero]
}

TEST(ByteCountFormatter, OneIsSingularByte)
{
    // Not stated in the reference pages; Apple's open-source Foundation (swift-corelibs-
    // foundation, ByteCountFormatter) names the singular unit for a count of exactly 1.
    EXPECT_EQ(formatMemoryByteCount(1), q("1 byte"));
}

TEST(ByteCountFormatter, BelowOneKibibyteCountsBytes)
{
    EXPECT_EQ(formatMemoryByteCount(2), q("2 bytes")); // [memory] [adaptive]
    EXPECT_EQ(formatMemoryByteCount(512), q("512 bytes"));
}

TEST(ByteCountFormatter, OneKibibyteIsOneKB)
{
    EXPECT_EQ(formatMemoryByteCount(1024), q("1 KB")); // [memory]
    EXPECT_EQ(formatMemoryByteCount(17 * 1024), q("17 KB"));
}

TEST(ByteCountFormatter, KilobytesHaveNoFractionDigits)
{
    EXPECT_EQ(formatMemoryByteCount(1536), q("2 KB"));             // 1.5 KB: [adaptive]
    EXPECT_EQ(formatMemoryByteCount(1126), q("1 KB"));             // 1.0996 KB
    EXPECT_EQ(formatMemoryByteCount(10 * 1024 + 800), q("11 KB")); // 10.78 KB
}

TEST(ByteCountFormatter, OneMebibyteIsOneMBWithoutPaddedZero)
{
    EXPECT_EQ(formatMemoryByteCount(1048576), q("1 MB")); // [memory] [nopad]
}

TEST(ByteCountFormatter, MegabytesHaveOneFractionDigit)
{
    EXPECT_EQ(formatMemoryByteCount(1572864), q("1.5 MB"));            // [adaptive]
    EXPECT_EQ(formatMemoryByteCount(2453668), q("2.3 MB"));            // 2.34 MB
    EXPECT_EQ(formatMemoryByteCount(3 * 1048576 + 996148), q("4 MB")); // 3.95 MB, [nopad]
}

TEST(ByteCountFormatter, GigabytesHaveTwoFractionDigits)
{
    EXPECT_EQ(formatMemoryByteCount(1073741824), q("1 GB"));    // [nopad]
    EXPECT_EQ(formatMemoryByteCount(2415919104), q("2.25 GB")); // [adaptive]
    EXPECT_EQ(formatMemoryByteCount(1277752771), q("1.19 GB")); // the documented 1.19 GB
}

TEST(ByteCountFormatter, TrailingFractionZeroIsNotPadded)
{
    EXPECT_EQ(formatMemoryByteCount(1288490189), q("1.2 GB")); // [nopad]: 1.2, not 1.20
}

TEST(ByteCountFormatter, TerabytesAndPetabytesHaveTwoFractionDigits)
{
    EXPECT_EQ(formatMemoryByteCount(3848290697216), q("3.5 TB")); // 3.5 × 1024^4
    EXPECT_EQ(formatMemoryByteCount(std::int64_t(1) << 50), q("1 PB"));
}

TEST(ByteCountFormatter, ExbibyteIsOneEB)
{
    EXPECT_EQ(formatMemoryByteCount(std::int64_t(1) << 60), q("1 EB")); // [units]
}

// The next three follow Apple's open-source Foundation (swift-corelibs-foundation,
// ByteCountFormatter), the one public implementation of this formatter: the unit comes from
// the raw count, the number is rounded by a number formatter (ties to even) and grouped.

TEST(ByteCountFormatter, UnitFollowsTheRawCountJustBelowTheNextUnit)
{
    EXPECT_EQ(formatMemoryByteCount(1048575), q("1,024 KB")); // 1,023.999 KB
    EXPECT_EQ(formatMemoryByteCount(1023), q("1,023 bytes"));
}

TEST(ByteCountFormatter, RoundingTiesGoToTheEvenNeighbour)
{
    EXPECT_EQ(formatMemoryByteCount(2560), q("2 KB"));      // 2.5 KB
    EXPECT_EQ(formatMemoryByteCount(3584), q("4 KB"));      // 3.5 KB
    EXPECT_EQ(formatMemoryByteCount(1310720), q("1.2 MB")); // 1.25 MB
}

TEST(ByteCountFormatter, LargeFiguresAreGroupedInThousands)
{
    EXPECT_EQ(formatMemoryByteCount(1000 * 1024), q("1,000 KB"));
}

} // namespace
} // namespace stowly
