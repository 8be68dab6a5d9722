// Presses, repeats and lost releases of a shortcut, as desktops report them.
#include "platform/linux/keys/RepeatedPresses.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orlune {
namespace {

using Time = RepeatedPresses::Time;

/// What the desktop reports: a press, or a release, at this time.
struct Report {
    char edge;
    int at;
};

struct Case {
    const char* name;
    std::vector<Report> reports;
    std::string edges; ///< "+0" and "-520": the edges, and when each was known
};

class Player {
  public:
    explicit Player(RepeatedPresses presses = {}) : presses_(presses) {}

    void play(const std::vector<Report>& reports, int until) {
        for (const auto& report : reports) {
            passTime(report.at);
            const Time now(report.at);
            append(report.edge == '+' ? presses_.reportPress(now) : presses_.reportRelease(), now);
        }
        passTime(until);
    }
    std::string takeEdges() { return std::exchange(edges_, {}); }

  private:
    void passTime(int until) {
        while (presses_.deadline() && *presses_.deadline() <= Time(until)) {
            const auto now = *presses_.deadline();
            append(presses_.expire(), now);
        }
    }
    void append(const RepeatedPresses::Edges& edges, Time now) {
        for (const auto edge : edges) {
            edges_ += (edges_.empty() ? "" : " ");
            edges_ += edge == RepeatedPresses::Edge::press ? '+' : '-';
            edges_ += std::to_string(now.count());
        }
    }

    RepeatedPresses presses_;
    std::string edges_;
};

/// Pressed at `at`, repeated from `delay` on every 30 ms, `count` times.
std::vector<Report> held(int at, int delay, int count) {
    std::vector<Report> reports{{'+', at}};
    for (int index = 0; index < count; ++index) {
        reports.push_back({'+', at + delay + 30 * index});
    }
    return reports;
}

std::vector<Report> operator+(std::vector<Report> left, const std::vector<Report>& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

TEST(RepeatedPressesTest, pressesAreToldFromRepeats) {
    const std::vector<Report> released{{'-', 700}};
    const std::vector<Case> cases{
        {"both edges, no repeats", {{'+', 0}, {'-', 3000}}, "+0 -3000"},
        {"a release without a press", {{'-', 0}}, ""},
        {"held with repeats", held(0, 500, 6) + released, "+0 -700"},
        {"held with slow repeats", {{'+', 0}, {'+', 500}, {'+', 610}, {'+', 720}}, "+0 -1020"},
        {"held with a long delay", held(0, 1500, 3), "+0 -1860"},
        {"the release after the repeats is lost", held(0, 500, 4), "+0 -890"},
        {"let go right after the first repeat", held(0, 520, 1) + released, "+0 -700"},
        {"the same, and the release is lost", held(0, 520, 1), "+0 -820"},
        {"tapped, the release lost, pressed again",
         {{'+', 0}, {'+', 2000}, {'-', 2900}},
         "+0 -2300 +2300 -2900"},
        {"the same twice, tapped",
         {{'+', 0}, {'+', 2000}, {'-', 2100}, {'+', 3000}, {'-', 3100}},
         "+0 -2100 +2100 -2100 +3000 -3100"},
    };
    for (const auto& [name, reports, edges] : cases) {
        SCOPED_TRACE(name);
        Player player;
        player.play(reports, 10000);
        EXPECT_EQ(player.takeEdges(), edges);
    }
}

TEST(RepeatedPressesTest, aSeriesTeachesWhenARepeatIsMissing) {
    Player player;
    player.play(held(0, 1000, 3), 2000);
    EXPECT_EQ(player.takeEdges(), "+0 -1360");
    player.play({{'+', 3000}}, 10000);
    EXPECT_EQ(player.takeEdges(), "+3000 -4300") << "tapped, and the release is lost";
    player.play(held(11000, 1000, 1), 20000);
    EXPECT_EQ(player.takeEdges(), "+11000 -12300") << "the delay of this desktop";
}

TEST(RepeatedPressesTest, withoutAnyReleaseATapIsOverAfterTheLongestDelay) {
    Player player(RepeatedPresses(Time(1500)));
    player.play({{'+', 0}, {'+', 2000}}, 4000);
    EXPECT_EQ(player.takeEdges(), "+0 -1800 +2000 -3800");
    player.play(held(5000, 500, 3), 7000);
    EXPECT_EQ(player.takeEdges(), "+5000 -5860");
    player.play({{'+', 10000}, {'+', 10500}}, 20000);
    EXPECT_EQ(player.takeEdges(), "+10000 -10800 +10800 -11300") << "two presses";
}

TEST(RepeatedPressesTest, aBurstOfLateRepeatsTeachesNothing) {
    Player player;
    player.play({{'+', 0}, {'+', 10}, {'+', 12}, {'+', 14}}, 1000);
    EXPECT_EQ(player.takeEdges(), "+0 -314");
    player.play(held(2000, 500, 3) + std::vector<Report>{{'-', 2600}}, 10000);
    EXPECT_EQ(player.takeEdges(), "+2000 -2600");
}

} // namespace
} // namespace orlune
