#pragma once

#include "bench/gateway/CanFrame.h"

#include <algorithm>
#include <vector>

// The messages that one requester has asked for and not stopped again.
class Subscriptions {
public:
    // With `everything`, a requester who has asked for one message is forwarded all of them.
    explicit Subscriptions(bool everything) : mEverything(everything) {}

    bool empty() const { return mAddresses.empty(); }
    std::size_t count() const { return mAddresses.size(); }
    CanAddress at(std::size_t index) const { return mAddresses[index]; }
    bool contains(CanAddress address) const {
        return std::find(mAddresses.begin(), mAddresses.end(), address) != mAddresses.end();
    }

    void add(CanAddress address) { mAddresses.push_back(address); }
    void remove(CanAddress address) { std::erase(mAddresses, address); }

    bool wants(CanAddress address) const { return mEverything || contains(address); }

private:
    bool mEverything;
    std::vector<CanAddress> mAddresses;
};
