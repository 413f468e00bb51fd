#pragma once
// Checks of the numbers typed on the command line, made before any arithmetic: a value that
// is not a finite number (nan, inf, 1e308 out of range) or lies outside its bounds is refused
// with the program's message naming the option and its accepted range.
#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace nocturnel {

// A finite decimal number in [low, high]. `what` names the option ("--zoom"), `hint` is the
// detail line when the text is refused (default: the range).
std::optional<double> checkedNumber(std::string_view text, double low, double high, std::string_view what,
                                    std::string_view hint = {});
// A whole number in [low, high].
std::optional<long> checkedInteger(std::string_view text, long low, long high, std::string_view what);

// Right ascension in hours 0..24 and declination in degrees -90..90, decimal or sexagesimal
// ("5.588", "5:35:17", "5h35m17", "-5:23:28", "-5°23'28").
std::optional<double> checkedRightAscension(std::string_view text, std::string_view what = "right ascension");
std::optional<double> checkedDeclination(std::string_view text, std::string_view what = "declination");
// Any angle text in degrees within [low, high].
std::optional<double> checkedAngle(std::string_view text, double low, double high, std::string_view what);

// True when the value is finite and within [low, high]; otherwise the message and false.
bool checkRange(double value, double low, double high, std::string_view what);

// For numeric options read by the command-line parser: a finite number in [low, high] (nan,
// inf and 1e308 are refused, which CLI::Range lets through for nan).
CLI::Validator finiteRange(double low, double high);

}  // namespace nocturnel
