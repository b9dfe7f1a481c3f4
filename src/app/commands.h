// The commands of the main window, without the window: Details, HEX, Clear, Extract and the
// close query. The window (or tarvex-cli) calls these with the user's input already gathered.
#pragma once

#include "state/context.h"

namespace tarvex {

// Details: toggles between the page and the details of the selected line's record (for an IFO,
// of the selected table). Does nothing while the hex view is shown.
void DetailsCommand(AppContext& ctx);

// HEX: toggles between the page and the hex view of the selected line's record.
void HexCommand(AppContext& ctx);

// Clear: empties the report list and changes nothing else.
void ClearCommand(AppContext& ctx);

// The actions the Extract dialog can start, in the order they run.
struct ExtractActions {
  void (*audio)(AppContext&);
  void (*video)(AppContext&);
  void (*stills)(AppContext&);
  void (*subpictures)(AppContext&);
  void (*disassemble)(AppContext&);
};
// The extraction and disassembly routines of the tool.
ExtractActions DefaultExtractActions();

// Extract, after the dialog was closed with OK and these boxes ticked (a non-zero flag is a
// ticked box): sets the request flags and takes the open stream's length, then runs audio,
// video, stills, sub-pictures and disassembly, each whose flag is set, one after the other. A
// run that finds the stream shorter than that length clears the flags: no later run starts.
void ExtractCommand(AppContext& ctx, const ExtractRequest& ticked);
void ExtractCommand(AppContext& ctx, const ExtractRequest& ticked, const ExtractActions& actions);
// Extract, after the dialog was cancelled: the request flags are cleared and nothing runs.
void ExtractCancelled(AppContext& ctx);

// The window asks whether it may close: an open file is closed and the list cleared. Always
// allows the close.
bool CloseQuery(AppContext& ctx);

}  // namespace tarvex
