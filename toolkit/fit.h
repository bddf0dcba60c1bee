// Windows that fit: the one rule of all displays.

#pragma once

/// The largest size from `most` down to `least` for which `fits` is true; `least` if it is
/// for none. The last call of `fits` was about the result. It asks from above, since by
/// rounding a larger size may fit where a smaller one does not.
template <class Fits> int LargestThatFits(int least, int most, Fits fits) {
    while (!fits(most) && most > least) --most;
    return most;
}
