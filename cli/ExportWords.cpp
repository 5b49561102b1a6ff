#include "cli/ExportWords.h"

void WriteExportCounts(const CSession& session, const ExportCounts& counts, const std::wstring& line)
{
    if (!session.Options().json) {
        WriteOutput(line);
        return;
    }
    CJsonWriter json;
    json.BeginObject()
        .Field(L"exported", counts.exported)
        .Field(L"skipped", counts.skipped)
        .Field(L"failed", counts.failed)
        .Field(L"not_saved", counts.notSaved)
        .EndObject();
    WriteOutput(json.Document());
}
