// The acceptance test in its order, with its reason codes, and the fixed-point altitude test.
#include <cmath>

#include <gtest/gtest.h>

#include "plans/selection_acceptance.h"

namespace nocturnel {
namespace {

ObjectReference object(int catalog, int type, int constellation, double mag, double ra = 0, double dec = 0) {
    ObjectReference r{};
    r.catalog = catalog, r.number = 1, r.type = type, r.constellation = constellation;
    r.mag = static_cast<float>(mag), r.raHours = ra, r.decDeg = dec;
    return r;
}

TEST(SelectionAcceptance, EachTestInOrderWithItsReason) {
    const ObjectReference m42 = object(42, 20, 59, 4.0);  // NGC, bright nebula (group 4), Orion
    struct Case {
        const char* what;
        SelectionCriteria c;
        SelectionReason expected;
    };
    auto with = [](auto set) {
        SelectionCriteria c;
        set(c);
        return c;
    };
    const Case cases[] = {
        {"no criteria", {}, kAccepted},
        {"group matches", with([](auto& c) { c.typeGroupFilter = 4; }), kAccepted},
        {"group differs", with([](auto& c) { c.typeGroupFilter = 3; }), kRejectedGroup},
        {"constellation + 1", with([](auto& c) { c.constellationFilter = 60; }), kAccepted},
        {"constellation differs", with([](auto& c) { c.constellationFilter = 59; }), kRejectedMismatch},
        {"catalogue matches", with([](auto& c) { c.catalogFilter = 42; }), kAccepted},
        {"catalogue differs", with([](auto& c) { c.catalogFilter = 29; }), kRejectedMismatch},
        {"Caldwell lets all through", with([](auto& c) { c.catalogFilter = 9; }), kAccepted},
        {"Herschel lets all through", with([](auto& c) { c.catalogFilter = 25; }), kAccepted},
        {"Messier lets all through", with([](auto& c) { c.catalogFilter = 40; }), kAccepted},
        {"best NGC lets all through", with([](auto& c) { c.catalogFilter = 49; }), kAccepted},
        {"user catalogue lets all through", with([](auto& c) { c.catalogFilter = 63; }), kAccepted},
        {"type matches", with([](auto& c) { c.typeFilter = 20; }), kAccepted},
        {"type 19 accepts every type", with([](auto& c) { c.typeFilter = 19; }), kAccepted},
        {"type differs", with([](auto& c) { c.typeFilter = 16; }), kRejectedMismatch},
        {"within limit 6", with([](auto& c) { c.magLimitChoice = 4; }), kAccepted},
        {"beyond limit 4 is not (4.0 <= 4)", with([](auto& c) { c.magLimitChoice = 3; }), kAccepted},
        {"scope limit", with([](auto& c) { c.magLimitChoice = 1, c.scopeLimitMag = 3.9f; }), kRejectedFaint},
        {"eyes limit", with([](auto& c) { c.magLimitChoice = 2, c.eyesLimitMag = 6.0f; }), kAccepted},
        {"constellation tested before the magnitude",
         with([](auto& c) { c.constellationFilter = 1, c.magLimitChoice = 1; }), kRejectedMismatch},
    };
    for (const Case& k : cases) EXPECT_EQ(acceptObject(k.c, m42, {}), k.expected) << k.what;
}

TEST(SelectionAcceptance, UnknownMagnitudePassesOnlyWithoutALimit) {
    const ObjectReference dark = object(34, 21, 0, 0.0);
    for (int choice = 0; choice <= 8; ++choice) {
        SelectionCriteria c;
        c.magLimitChoice = static_cast<int16_t>(choice);
        c.scopeLimitMag = 14.5f, c.eyesLimitMag = 6.5f;
        EXPECT_EQ(acceptObject(c, dark, {}) == kAccepted, choice == 0) << choice;
    }
}

TEST(SelectionAcceptance, DifficultyBandsShareTheirBounds) {
    struct Case {
        double ratio;
        bool veryDifficult, difficult, easy, veryEasy;
    };
    const Case cases[] = {
        {2.0, true, true, false, false}, {1.5, false, true, true, false}, {1.0, false, false, true, true},
        {0.5, false, false, false, true}, {0.49, false, false, false, false}, {10.0, true, false, false, false},
        {10.01, false, false, false, false}, {3.0, true, false, false, false},
    };
    for (const Case& k : cases) {
        SelectionConditions conditions;
        conditions.estimate = [&](const ObjectReference&) { return SelectionEstimate{k.ratio, 100}; };
        const bool expected[] = {k.veryDifficult, k.difficult, k.easy, k.veryEasy};
        for (int n = 1; n <= 4; ++n) {
            SelectionCriteria c;
            c.difficulty = static_cast<int16_t>(n);
            EXPECT_EQ(acceptObject(c, object(42, 16, 0, 9), conditions),
                      expected[n - 1] ? kAccepted : kRejectedDifficulty)
                << "ratio " << k.ratio << " difficulty " << n;
        }
    }
    SelectionCriteria c;
    c.difficulty = 3;
    EXPECT_EQ(acceptObject(c, object(42, 16, 0, 9), {}), kRejectedDifficulty) << "no estimate, no difficulty";
}

TEST(SelectionAcceptance, SizeComparesTheBestMagnificationWithTheReference) {
    SelectionConditions conditions;
    conditions.eyepieceMagnification = 50;
    double best = 0;
    conditions.estimate = [&](const ObjectReference&) { return SelectionEstimate{1.2, best}; };
    SelectionCriteria c;
    c.sizeMatch = 1;
    c.sizeReference = 2;  // the best magnification about twice the eyepiece's
    struct Case { double best; bool accepted; };
    // |1 - 2 / (best / 50)| <= 0.6 holds for best in [62.5, 250]; under 1 the value is 10000.
    const Case cases[] = {{100, true}, {50, false}, {63, true}, {62, false}, {250, true}, {251, false}, {0.5, false}};
    for (const Case& k : cases) {
        best = k.best;
        EXPECT_EQ(acceptObject(c, object(42, 16, 0, 9), conditions) == kAccepted, k.accepted) << k.best;
    }
}

TEST(SelectionAcceptance, HourAngleFoldsIntoPlusMinusTwelve) {
    EXPECT_DOUBLE_EQ(hourAngleHours(13, 0), -11);
    EXPECT_DOUBLE_EQ(hourAngleHours(1, 14), 11);
    EXPECT_DOUBLE_EQ(hourAngleHours(23.5, 0.5), -1);
    EXPECT_DOUBLE_EQ(hourAngleHours(6, 6), 0);
}

TEST(SelectionAcceptance, FixedPointAltitudeAgreesWithTheDoubleFormula) {
    constexpr double kDeg = 3.14159265358979323846 / 180;
    constexpr double kMin[] = {0, 0, 15, 20, 25, 30, 35, 40, 45, 50};
    int compared = 0;
    for (double lat : {-33.9, 0.0, 31.96, 48.1, 70.0})
        for (double dec = -85; dec <= 85; dec += 7.3)
            for (double ha = -12; ha <= 12; ha += 0.37) {
                const double sinAlt =
                    std::sin(lat * kDeg) * std::sin(dec * kDeg) + std::cos(lat * kDeg) * std::cos(dec * kDeg) * std::cos(ha * 15 * kDeg);
                for (int choice = 1; choice <= 10; ++choice) {
                    const double minimum = choice == 10 ? 0 : kMin[choice];
                    const double margin = sinAlt - std::sin(minimum * kDeg);
                    if (std::abs(margin) < 1e-6) continue;  // on the boundary either answer is right
                    const bool above = margin > 0;
                    EXPECT_EQ(passesVisibility(choice, 10.0, dec, 10.0 + ha, lat), choice == 10 ? !above : above)
                        << lat << " " << dec << " " << ha << " " << choice;
                    ++compared;
                }
            }
    EXPECT_GT(compared, 10000);
}

}  // namespace
}  // namespace nocturnel
