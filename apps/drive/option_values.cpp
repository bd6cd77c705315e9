// SPDX-License-Identifier: GPL-2.0-or-later
#include "drive/option_values.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <optional>
#include <utility>

namespace tesmor::drive {

namespace {

[[noreturn]] void fail(const std::string& option, const std::string& value, const std::string& wanted)
{
    throw UsageError("--" + option + " is '" + value + "'; it must be " + wanted);
}

std::optional<std::int64_t> toInteger(std::string_view text, int base = 10)
{
    std::int64_t value = 0;
    if (text.starts_with('+'))
        text.remove_prefix(1);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(value) : std::nullopt;
}

std::pair<std::string, std::string> halves(const std::string& text, const std::string& between)
{
    const std::size_t at = text.find(between);
    if (at == std::string::npos)
        return {text, {}};
    return {text.substr(0, at), text.substr(at + between.size())};
}

} // namespace

std::int64_t integerOf(const std::string& option, const std::string& text, std::int64_t low, std::int64_t high)
{
    const auto value = toInteger(text);
    if (!value || *value < low || *value > high)
        fail(option, text, "a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    return *value;
}

double numberOf(const std::string& option, const std::string& text)
{
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value) || value < 0.001 ||
        value > 1e6)
        fail(option, text, "a number from 0.001 to 1000000");
    return value;
}

char axisOf(const std::string& text)
{
    if (text.size() != 1 || std::isalpha(static_cast<unsigned char>(text[0])) == 0)
        fail("axis", text, "one letter, such as Z");
    return text[0];
}

void setLimit(TravelSettings& travel, const std::string& text)
{
    const auto [low, high] = halves(text, "..");
    const auto lowest = toInteger(low);
    const auto highest = toInteger(high);
    if (!lowest || !highest || *lowest >= *highest || std::abs(*lowest) > MOST_STEPS || std::abs(*highest) > MOST_STEPS)
        fail("limit", text, "two positions in steps, the lower one first, such as -20000..50000");
    travel.low = *lowest;
    travel.high = *highest;
}

void setGear(TravelSettings& travel, const std::string& text)
{
    const auto [motor, link] = halves(text, "/");
    const auto numerator = toInteger(motor);
    const auto denominator = toInteger(link);
    if (!numerator || !denominator || *numerator < 1 || *denominator < 1 || *numerator > 1'000'000 ||
        *denominator > 1'000'000)
        fail("gear", text, "two whole numbers from 1 to 1000000, such as 400/12800");
    travel.gearMotor = *numerator;
    travel.gearLink = *denominator;
}

void setUsbDevice(Options& options, const std::string& text)
{
    const auto [vendor, product] = halves(text, ":");
    const auto vendorId = toInteger(vendor, 16);
    const auto productId = toInteger(product, 16);
    if (!vendorId || !productId || vendor.size() != 4 || product.size() != 4 || *vendorId < 0 || *productId < 0)
        fail("device", text,
             "four hexadecimal digits each for maker and product, such as 1d50:6018; see: tesmor-drive list");
    options.usb.vendor = static_cast<std::uint16_t>(*vendorId);
    options.usb.product = static_cast<std::uint16_t>(*productId);
}

void setEndpoint(Options& options, const std::string& text)
{
    const auto endpoint = toInteger(text.starts_with("0x") ? text.substr(2) : "", 16);
    if (!endpoint || *endpoint < 0x81 || *endpoint > 0x8F)
        fail("ack-endpoint", text, "one towards the computer, 0x81 to 0x8f");
    options.usb.ackEndpoint = static_cast<std::uint8_t>(*endpoint);
}

void setServer(Options& options, const std::string& text)
{
    const auto [host, port] = halves(text, ":");
    const auto portNumber = port.empty() ? std::optional<std::int64_t>(options.indi.port) : toInteger(port);
    if (host.empty() || !portNumber || *portNumber < 1 || *portNumber > 65535)
        fail("server", text, "HOST:PORT, such as localhost:7624");
    options.indi.host = host;
    options.indi.port = static_cast<unsigned>(*portNumber);
}

} // namespace tesmor::drive
