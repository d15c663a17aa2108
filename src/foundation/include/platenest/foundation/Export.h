#pragma once

// Marks what a shared build exports; everything else stays hidden. Exceptions and polymorphic classes need it too,
// so that a throw in one library is caught by its type in another.
#define PLATENEST_API __attribute__((visibility("default")))
