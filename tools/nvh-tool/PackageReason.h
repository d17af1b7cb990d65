#pragma once

#include "nvh/packaging/PackageJob.h"

// Why a package is not where it was to go, and what is left of it, in one line for whoever waits for it. For an outcome
// that is not good.
QString reasonOf(const PackageOutcome& outcome);
