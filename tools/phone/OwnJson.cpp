// Boost's JSON library, compiled here: its compiled form speaks for one standard library only.
#include <boost/json/src.hpp>
