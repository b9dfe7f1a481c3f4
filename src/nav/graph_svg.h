// The navigation graph drawn as SVG by Graphviz's own library (libgvc), in this process.
// tarvex-cli draws one graph a run. Graphviz 2.42's text layout plugin (pango) keeps a font
// cache across contexts that a freed context leaves dangling: AddressSanitizer reports a use
// after free when one process lays out labels in a second context, so the sanitized tests run
// each test in its own process (CTest), as CI does.
#pragma once

#include <string>

namespace tarvex::nav {

// Lays out dot (DOT text, as GraphToDot writes it) with Graphviz's "dot" layout and writes the
// drawing as SVG to path, replacing the file. Returns false with a sentence in error when
// Graphviz cannot read the text, has no "dot" layout or "svg" renderer (its plugins come with
// the libgvc6 package, which lists them in its configuration when installed), or when the
// file cannot be written; Graphviz itself explains its failures on standard error.
bool WriteGraphSvg(const std::string& dot, const std::string& path, std::string& error);

// The same drawing as SVG text in svg.
bool RenderGraphSvg(const std::string& dot, std::string& svg, std::string& error);

}  // namespace tarvex::nav
