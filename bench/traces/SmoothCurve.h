#pragma once

#include <vector>

// A smooth course through the points of a driving cycle, which are often a second apart.
//
// A piecewise cubic whose slopes are the weighted harmonic means of F. N. Fritsch and J. Butland ("A method for
// constructing local monotone piecewise cubic interpolants", SIAM J. Sci. Stat. Comput. 5, 1984): the slope has no
// steps, and the value never leaves the range of the two points around it, so a standing car stands.
class SmoothCurve {
public:
    // At least two points, times strictly rising, in seconds.
    SmoothCurve(std::vector<double> times, std::vector<double> values);

    struct Moment {
        double value;
        double slope;  // the value's change a second
    };
    // Before the first and after the last point the curve stays where it is.
    Moment at(double seconds) const;

private:
    std::vector<double> mTimes;
    std::vector<double> mValues;
    std::vector<double> mSlopes;
};
