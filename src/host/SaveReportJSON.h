#pragma once

#include "host/SaveReport.h"

#include <string>

namespace sela {

/// A report as one JSON object for programs (docs/formats.md), with a line end.
std::string saveReportJSON(const SaveReport& report);

} // namespace sela
