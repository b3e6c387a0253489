// A preview page: one HTML file that shows every drawing of a run beside its name, sizes and
// status.
#ifndef SVGMODULE_TOOLS_GALLERY_H
#define SVGMODULE_TOOLS_GALLERY_H

#include <QString>
#include <string>
#include <vector>

#include "Batch.h"

// Writes the page to `page`. A job with an output file is shown from that file (linked
// relative to the page, and linked to it); otherwise its document, kept in the result, is
// embedded. A click on a drawing shows it as large as the window. Each card marks itself
// "shown" or "broken" once the browser has tried to display its drawing, or "empty" when the
// document draws nothing (JobResult::empty), and the page's tally counts them; a file drawn in
// EMF+ records only is marked so. A result with the other mode's document (otherSvg) shows
// both drawings side by side, each named by its mode (`mode` is the results' own). False, with
// the system's reason in `error`, when the page could not be written.
bool WriteGallery(const QString& page, const std::vector<Job>& jobs,
                  const std::vector<JobResult>& results, const std::string& summary,
                  std::string* error = nullptr, int mode = SVGMODULE_MODE_FAITHFUL);

#endif
