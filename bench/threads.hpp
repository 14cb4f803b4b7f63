#pragma once

namespace bench {

/// Prints the processor time of operations of the library, in nanoseconds, while 1, 2 and 4 threads perform them:
///
///     operation|objects|threads|nanoseconds
///
/// "device each": every thread finds the device by itself, and makes its objects of it. "objects each": the threads
/// make their objects of one device. "copies": each has copies of one set of objects. The last two share the count of
/// the device's call handle.
void threads();

} // namespace bench
