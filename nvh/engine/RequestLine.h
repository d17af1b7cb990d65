#pragma once

#include "nvh/engine/RunFiles.h"
#include "nvh/packaging/PackageJob.h"

#include <algorithm>
#include <list>
#include <utility>

// What was asked of the engine and waits for its turn.
struct Request {
    // To pack a run's results, to begin a run, or to record a clip.
    enum class Kind { Results, Run, Clip };

    Kind kind;                     // see there
    RunFiles::TestNote test = {};  // of a run
    PackageJob package = {};       // of results
    QString tag = {};              // of results, for the package's name
};

// The requests in the order in which they are carried out. UI thread.
class RequestLine {
public:
    // At the end; or before all others, as what they would overwrite.
    void add(Request request) { mRequests.push_back(std::move(request)); }
    void addFirst(Request request) { mRequests.push_front(std::move(request)); }
    // All of that kind.
    void cancel(Request::Kind kind) {
        mRequests.remove_if([kind](const Request& each) { return each.kind == kind; });
    }
    // True if one of that kind waits.
    bool has(Request::Kind kind) const {
        return std::any_of(mRequests.begin(), mRequests.end(),
                           [kind](const Request& each) { return each.kind == kind; });
    }
    // The one whose turn it is; null if there is none.
    const Request* first() const { return mRequests.empty() ? nullptr : &mRequests.front(); }
    // Takes that one, which there is.
    Request takeFirst() {
        Request request = std::move(mRequests.front());
        mRequests.pop_front();
        return request;
    }

private:
    std::list<Request> mRequests;
};
