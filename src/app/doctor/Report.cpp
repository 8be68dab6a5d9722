#include "app/doctor/Report.h"

#include <boost/json/serialize.hpp>
#include <boost/json/value.hpp>

#include <algorithm>

namespace orlune {

namespace json = boost::json;

namespace {

using State = Finding::State;

constexpr std::size_t widestState = 7;

std::string nameOf(State state) {
    switch (state) {
    case State::ok:
        return "ok";
    case State::warning:
        return "warning";
    case State::fail:
        return "fail";
    }
    return {};
}

std::string filled(std::string text, std::size_t width) {
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

std::string summary(const Findings& findings) {
    const auto count = std::ranges::count(findings, State::fail, &Finding::state);
    if (count == 0) {
        return "Everything that dictation needs works.\n";
    }
    return std::to_string(count) + (count == 1 ? " check" : " checks") + " of "
           + std::to_string(findings.size()) + " failed.\n";
}

} // namespace

bool allWork(const Findings& findings) {
    return std::ranges::count(findings, State::fail, &Finding::state) == 0;
}

std::string reportText(const Findings& findings) {
    std::size_t widestName = 0;
    for (const auto& finding : findings) {
        widestName = std::max(widestName, finding.name.size());
    }
    std::string text;
    for (const auto& finding : findings) {
        text += filled(nameOf(finding.state), widestState) + "  " + filled(finding.name, widestName)
                + "  " + finding.found + "\n";
        if (!finding.advice.empty()) {
            text += std::string(widestState + widestName + 4, ' ') + "→ " + finding.advice + "\n";
        }
    }
    return text + "\n" + summary(findings);
}

std::string reportJson(const Findings& findings) {
    json::array checks;
    for (const auto& finding : findings) {
        json::object check;
        check["name"] = finding.name;
        check["state"] = nameOf(finding.state);
        check["found"] = finding.found;
        check["advice"] =
            finding.advice.empty() ? json::value(nullptr) : json::value(finding.advice);
        checks.emplace_back(std::move(check));
    }
    json::object report;
    report["works"] = allWork(findings);
    report["checks"] = std::move(checks);
    return json::serialize(report) + "\n";
}

} // namespace orlune
