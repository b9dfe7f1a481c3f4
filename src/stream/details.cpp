#include "stream/details.h"

namespace tarvex {

void ShowRecordDetails(AppContext&) {}

}  // namespace tarvex
