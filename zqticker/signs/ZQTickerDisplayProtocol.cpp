#include "zqticker/signs/ZQTickerDisplayProtocol.h"

ZQTickerDisplayProtocol::~ZQTickerDisplayProtocol() = default;
