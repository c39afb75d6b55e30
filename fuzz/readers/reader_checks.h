#ifndef CORVANE_FUZZ_READERS_READER_CHECKS_H
#define CORVANE_FUZZ_READERS_READER_CHECKS_H

#include "host/error.h"
#include "host/transfer_function.h"
#include "host/volume.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::fuzz
{
// Ends the program, which tells the fuzzer of a finding, unless the condition holds.
void Require(bool condition, const char* what);

// Runs a reader, which ends by itself or with an Error whose message is one line; anything else is a finding. False
// for an Error.
bool Succeeds(const std::function<void()>& read);

// Requires a line that can be shown: no line ends or other control characters, and not a page long.
void RequireLine(const std::string& text);

// Reads what lies at a path as a volume and as the labels of that volume. One whose stored values stand for others is
// prepared for pictures as commands do it: its window and its palette.
void ReadAndPrepare(const std::string& path);

// Turns a transfer function into a palette over the stored values of a volume.
void PreparePalette(const host::TransferFunction& function, double valueSlope, double valueIntercept,
                    double smallestSpacing);

// The files that an input stands for: what lies between lines "---- next file".
std::vector<std::string_view> FilesOfInput(const uint8_t* bytes, size_t count);
} // namespace corvane::fuzz

#endif
