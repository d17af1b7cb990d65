#pragma once

#include <functional>

// Lets the event loop turn until the condition holds; false if it does not within the limit.
bool waitUntil(const std::function<bool()>& holds, int limitMs = 20000);
