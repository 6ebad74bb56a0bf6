#pragma once

namespace kel
{

/// Prepares standard input, output and error. Call it once, before anything else.
///
/// A stream that the parent has closed gets the null device: otherwise the next file or socket would take its number,
/// and messages would be written into it. From then on, writing to a pipe without a reader, or beyond the file size
/// limit, fails with an error instead of ending the program.
void prepareStandardStreams();

} // namespace kel
