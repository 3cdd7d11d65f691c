// SPDX-License-Identifier: MIT
// Named and numeric character references.
#ifndef VS_WML_FILTER_LEXER_REFERENCE_H
#define VS_WML_FILTER_LEXER_REFERENCE_H

#include <cstdint>

#include "filter/ground/instance.h"

// Reads a named reference whose '&' has been read. Gives its UTF-16 unit, 0 when the
// name is not known, and its source text, at most `size` bytes and a NUL, in `text`.
uint16_t ReadNamedReference(char *text, uint16_t size, WmlProc *proc);

// Reads a numeric reference whose "&#" has been read. Gives its value, and its digits, at
// most `size` of them and a NUL, in `text`.
uint16_t ReadNumericReference(char *text, uint16_t size, WmlProc *proc);

// The value of the first four of a numeric reference's digits, decimal, or hexadecimal
// behind "x" or "0x"; 0 when there are none.
uint16_t ReferenceValue(const char *digits);

// The value of an ordinary reference, one with a ';', whose source from behind the '&'
// lies at `at` in the input buffer; `behind` gets the place behind it. 0 for all others,
// which the routines above read.
uint16_t ScanReference(const uint8_t *at, const uint8_t **behind);

#endif  // VS_WML_FILTER_LEXER_REFERENCE_H
