#include "app/queue/QueueSource.h"

namespace zq::app {

QueueSource::~QueueSource() = default;

} // namespace zq::app
