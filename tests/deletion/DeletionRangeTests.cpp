#include "tests/support/StoreFixture.h"
