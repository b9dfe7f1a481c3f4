#include "convert/drivers.h"

namespace tarvex {

void ShowIfoOverview(AppContext&) {}
void ShowIfoDetails(AppContext&) {}
void DisassembleIfo(AppContext&) {}
void AssembleInteractive(AppContext&) {}
void AssembleBatch(AppContext&) {}

}  // namespace tarvex
