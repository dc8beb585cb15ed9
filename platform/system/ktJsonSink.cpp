#include "platform/system/ktJsonSink.h"

namespace kt {

ktJsonSink::~ktJsonSink() = default;

}  // namespace kt
