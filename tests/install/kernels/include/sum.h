#ifndef SUM_H
#define SUM_H
#include "sum.h"
#define OFFSET 10
element sum(element a, element b) { return a + b; }
#endif
