// SPDX-License-Identifier: MIT
// Whether the short cuts beside the road of a byte are taken. They make the same calls as the road,
// which takes a character at a time, with a quarter of its instructions; without them, the one can
// be held against the other.
#ifndef VS_WML_FILTER_GROUND_SHORT_CUTS_H
#define VS_WML_FILTER_GROUND_SHORT_CUTS_H

#ifdef VS_WML_NO_SHORT_CUTS
inline constexpr bool kShortCuts = false;
#else
inline constexpr bool kShortCuts = true;
#endif

#endif  // VS_WML_FILTER_GROUND_SHORT_CUTS_H
