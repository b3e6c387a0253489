// The path bracket: begin, end, close figure, fill, stroke and abort. The writer collects the
// figures drawn inside the bracket and emits the path; these records carry no fields that are
// read (the bounds of EMR_FILLPATH and EMR_STROKEPATH are not used).
#define TRACE_FILE "Emf2SVG"
#include "api/Trace.h"
#include "emf/Emf2SVG.h"

int Emf2SvgConverter::OnBeginPath(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    m_writer.StartPath();
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnEndPath(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    m_writer.EndPath();
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnCloseFigure(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    m_writer.CloseFigure();
    TRACE_RETURN(1);
}

int Emf2SvgConverter::OnFillPath(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    TRACE_RETURN(m_writer.FillPath() ? 1 : 0);
}

int Emf2SvgConverter::OnStrokePath(unsigned char* record, unsigned int size) {
    TRACE_ENTER();
    if (IsEmptyRecord(record, size)) TRACE_RETURN(0);
    TRACE_RETURN(m_writer.StrokePath() ? 1 : 0);
}

int Emf2SvgConverter::OnAbortPath(unsigned char* record, unsigned int size) {
    if (IsEmptyRecord(record, size)) return 0;
    return m_writer.AbortPath() ? 1 : 0;
}
