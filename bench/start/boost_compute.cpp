#if __has_include(<boost/compute/core.hpp>)

#include <boost/compute/core.hpp>

int main() { return boost::compute::system::devices().size() == 1 ? 0 : 1; }

#else

int main() { return 77; } // as if left out

#endif
