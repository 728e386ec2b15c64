// The parts of Boost.JSON that aren't in its headers, built here once.
#include <boost/json/src.hpp>
