// The check that every sign makes before it writes or reads an archive.
#pragma once

#include "zqticker/platform/archiving/Coder.h"
#include "zqticker/platform/objects/AssertionHandler.h"

#define ZQ_REQUIRE_KEYED_CODING(coder)                                                             \
  ZQ_ASSERT((coder).allowsKeyedCoding(), QStringLiteral("keyed coding support is required"))
