/// \file
/// What the system lends for characters: conversion to UTF-8, and guessing a document's
/// character set. Another system implements these functions in a file of its own.
///
/// SPDX-License-Identifier: MIT
#ifndef VS_WML_HOST_PLATFORM_CONVERTER_H
#define VS_WML_HOST_PLATFORM_CONVERTER_H

#include <string>
#include <string_view>

#include "host/platform/charsets.h"

namespace vs_wml {

/// Appends bytes of a set as UTF-8; what they do not encode becomes U+FFFD. What is appended
/// depends on the arguments alone, whatever was converted before and in which thread.
void AppendConverted(std::string &text, std::string_view bytes, const Charset &charset);

/// The name of the set that the bytes look like, one that FindCharset knows, empty when it
/// cannot be told. UTF-8 and its relatives are never guessed.
std::string GuessCharset(std::string_view sample);

}  // namespace vs_wml

#endif  // VS_WML_HOST_PLATFORM_CONVERTER_H
