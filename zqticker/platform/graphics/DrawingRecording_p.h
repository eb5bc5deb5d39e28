// A drawing kept as the operations that make it.
#pragma once

#include <QtCore/QSizeF>

#include <functional>
#include <vector>

namespace zq::platform {

class GraphicsContext;

// One operation; owns everything that it needs, so that it draws the same whenever it is run.
using DrawingCommand = std::function<void(GraphicsContext&)>;

// Operations in user space of an area of `size` points.
struct DrawingRecording {
  QSizeF size;
  std::vector<DrawingCommand> commands;

  // Draws everything into `context`, whose user space must be that of the recording.
  void replay(GraphicsContext& context) const {
    for (const DrawingCommand& command : commands)
      command(context);
  }
};

} // namespace zq::platform
