// EMF decoders of the path bracket records.
#include "faithful/EmfPlayback.h"

namespace faithful {

void EmfPlayer::OnPathRecord(unsigned char* r, uint32_t) {
    switch (m_type) {
        case emr::BEGINPATH:
            return m_dc.BeginPath();
        case emr::ENDPATH:
            return m_dc.EndPath();
        case emr::CLOSEFIGURE:
            return m_dc.CloseFigure();
        case emr::FILLPATH:
            return m_dc.FillPath();
        case emr::STROKEANDFILLPATH:
            return m_dc.StrokeAndFillPath();
        case emr::STROKEPATH:
            return m_dc.StrokePath();
        case emr::FLATTENPATH:
            return m_dc.FlattenPath();
        case emr::WIDENPATH:
            return m_dc.WidenPath();
        case emr::SELECTCLIPPATH:
            return m_dc.SelectClipPath((int)Field32(r, 8));
        case emr::ABORTPATH:
            return m_dc.AbortPath();
        default:
            return;
    }
}

}  // namespace faithful
