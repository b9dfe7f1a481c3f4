// The bitrate chart: mux and video rate over title time as step lines, the two limits as dashed
// lines, chapter starts as thin vertical lines, axes in minutes and Mbit/s, a legend.
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "picture/bitrate.h"

namespace tarvex::picture {

namespace {

constexpr double kWidth = 960, kHeight = 420;
constexpr double kLeft = 70, kRight = 20, kTop = 40, kBottom = 60;

struct Frame {
  double minutes = 1, top_mbps = 12;
  double X(double seconds) const {
    return kLeft + (kWidth - kLeft - kRight) * seconds / 60.0 / minutes;
  }
  double Y(double mbps) const {
    return kHeight - kBottom - (kHeight - kTop - kBottom) * mbps / top_mbps;
  }
};

std::string Num(double v) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1f", v);
  return text;
}

std::string Line(double x0, double y0, double x1, double y1, const char* style) {
  return "<line x1=\"" + Num(x0) + "\" y1=\"" + Num(y0) + "\" x2=\"" + Num(x1) + "\" y2=\"" +
         Num(y1) + "\" " + style + "/>\n";
}

std::string Text(double x, double y, const std::string& text, const char* anchor) {
  return "<text x=\"" + Num(x) + "\" y=\"" + Num(y) + "\" text-anchor=\"" + anchor + "\">" + text +
         "</text>\n";
}

// A step line through the rate of every interval.
std::string Steps(const BitrateReport& r, const Frame& f, bool video, const char* colour) {
  std::string points;
  for (std::size_t k = 0; k < r.intervals.size(); ++k) {
    const BitrateInterval& i = r.intervals[k];
    double y = f.Y(Mbps(video ? i.video() : i.total(), r.interval));
    points += Num(f.X(static_cast<double>(k) * r.interval)) + "," + Num(y) + " ";
    points += Num(f.X(static_cast<double>(k + 1) * r.interval)) + "," + Num(y) + " ";
  }
  return "<polyline fill=\"none\" stroke=\"" + std::string(colour) +
         "\" stroke-width=\"1.5\" points=\"" + points + "\"/>\n";
}

std::string Axes(const Frame& f) {
  std::string out = Line(kLeft, f.Y(0), kWidth - kRight, f.Y(0), "stroke=\"black\"") +
                    Line(kLeft, kTop, kLeft, f.Y(0), "stroke=\"black\"");
  for (double m = 0; m <= f.top_mbps; m += 2) {
    out += Line(kLeft - 4, f.Y(m), kLeft, f.Y(m), "stroke=\"black\"") +
           Text(kLeft - 8, f.Y(m) + 4, Num(m), "end");
  }
  // Between 3 and 10 ticks on the time axis.
  double step = 30;
  for (double candidate : {0.02, 0.05, 0.1, 0.25, 0.5, 1.0, 2.0, 5.0, 10.0, 15.0, 30.0}) {
    if (f.minutes / candidate <= 10) {
      step = candidate;
      break;
    }
  }
  for (int i = 0; i * step <= f.minutes + 1e-9; ++i) {
    double t = i * step, x = kLeft + (kWidth - kLeft - kRight) * t / f.minutes;
    char label[16];
    std::snprintf(label, sizeof label, step < 0.1 ? "%.2f" : step < 1 ? "%.1f" : "%.0f", t);
    out +=
        Line(x, f.Y(0), x, f.Y(0) + 4, "stroke=\"black\"") + Text(x, f.Y(0) + 18, label, "middle");
  }
  out += Text((kLeft + kWidth - kRight) / 2, kHeight - 15, "title time (minutes)", "middle");
  out += "<text x=\"18\" y=\"" + Num((kTop + f.Y(0)) / 2) +
         "\" text-anchor=\"middle\" transform=\"rotate(-90 18 " + Num((kTop + f.Y(0)) / 2) +
         ")\">Mbit/s</text>\n";
  return out;
}

std::string Legend() {
  std::string out;
  const char* names[] = {"mux rate", "video rate", "mux limit 10.08", "video limit 9.8"};
  const char* styles[] = {
      "stroke=\"#1f5fbf\" stroke-width=\"2\"", "stroke=\"#2e9e44\" stroke-width=\"2\"",
      "stroke=\"#c0392b\" stroke-dasharray=\"6 4\"", "stroke=\"#e67e22\" stroke-dasharray=\"2 3\""};
  for (int i = 0; i < 4; ++i) {
    double x = kLeft + 10 + 200 * i;
    out += Line(x, 22, x + 30, 22, styles[i]) + Text(x + 36, 26, names[i], "start");
  }
  return out;
}

}  // namespace

std::string BitrateSvg(const BitrateReport& r) {
  Frame f;
  double seconds =
      std::max(static_cast<double>(r.intervals.size()) * r.interval, r.total_ticks / 90000.0);
  f.minutes = std::max(seconds / 60.0, 1.0 / 60.0);
  double peak = 0;
  for (const BitrateInterval& i : r.intervals) peak = std::max(peak, Mbps(i.total(), r.interval));
  f.top_mbps = std::max(12.0, 2 * std::ceil(peak / 2));
  std::string svg =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
      "width=\"" +
      Num(kWidth) + "\" height=\"" + Num(kHeight) +
      "\" font-family=\"sans-serif\" font-size=\"12\">\n";
  svg += "<title>Title " + std::to_string(r.title) +
         " bitrate</title>\n<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  for (std::uint64_t start : r.chapter_starts) {
    double x = f.X(start / 90000.0);
    svg += Line(x, kTop, x, f.Y(0), "stroke=\"#999999\" stroke-width=\"0.8\"");
  }
  svg += Axes(f) + Steps(r, f, false, "#1f5fbf") + Steps(r, f, true, "#2e9e44");
  svg += Line(kLeft, f.Y(kMuxLimitMbps), kWidth - kRight, f.Y(kMuxLimitMbps),
              "stroke=\"#c0392b\" stroke-dasharray=\"6 4\"");
  svg += Line(kLeft, f.Y(kVideoLimitMbps), kWidth - kRight, f.Y(kVideoLimitMbps),
              "stroke=\"#e67e22\" stroke-dasharray=\"2 3\"");
  svg += Legend();
  if (!r.chapter_starts.empty())
    svg += Text(kWidth - kRight, kHeight - 15, "grey lines: chapter starts", "end");
  return svg + "</svg>\n";
}

}  // namespace tarvex::picture
