// SPDX-License-Identifier: MIT
// Positions in the document, for looking ahead and coming back.
#ifndef VS_WML_FILTER_GROUND_STREAM_POSITION_H
#define VS_WML_FILTER_GROUND_STREAM_POSITION_H

#include <cstdint>

#include "filter/ground/instance.h"

inline constexpr uint32_t NO_POSITION = 0xFFFFFFFF;

// Offset of the next byte, NO_POSITION once the end of the input was met.
inline uint32_t WMLGetFilePos(const WmlProc *proc) {
  return proc->stopFlags & STOP_END_OF_INPUT ? NO_POSITION : VwCharTell(proc->input);
}

// Moves the input there; stays where it is for NO_POSITION.
inline void WMLSetFilePos(uint32_t position, WmlProc *proc) {
  if (position != NO_POSITION) VwCharSeek(proc->input, position, SEEK_FROM_START);
}

#endif  // VS_WML_FILTER_GROUND_STREAM_POSITION_H
