// SPDX-License-Identifier: MIT
#include "hosts/qxbrowse/ui/Dpi.h"

namespace browse {

UINT dpiOf(HWND window) {
  const UINT dpi = GetDpiForWindow(window);
  return dpi != 0 ? dpi : kPlainDpi;
}

Font systemFont(UINT dpi) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  if (!SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, dpi)) return {};
  return Font(CreateFontIndirectW(&metrics.lfMessageFont));
}

}  // namespace browse
