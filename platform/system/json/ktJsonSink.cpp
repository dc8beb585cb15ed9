#include "platform/system/json/ktJsonSink.h"

namespace kt {

ktJsonSink::~ktJsonSink() = default;

}  // namespace kt
