#include "cli/ImportWords.h"

#include "base/Format.h"

void RefuseBoth(const CArguments& arguments, const std::wstring& one, const std::wstring& other)
{
    if (arguments.Has(one) && arguments.Has(other))
        throw CUsageError(Format(L"%s and %s exclude each other.", one, other));
}

ClashAnswer ReadClashAnswer(const CArguments& arguments)
{
    RefuseBoth(arguments, L"--replace", L"--skip");
    if (arguments.Has(L"--replace"))
        return ClashAnswer::Replace;
    return arguments.Has(L"--skip") ? ClashAnswer::Skip : ClashAnswer::Ask;
}

void WriteImportCounts(const CSession& session, const ImportCounts& counts)
{
    if (!session.Options().json) {
        WriteOutput(Format(L"%u imported, %u aliased, %u skipped, %u failed\n", counts.imported,
                           counts.aliased, counts.skipped, counts.failed));
        return;
    }
    CJsonWriter json;
    json.BeginObject()
        .Field(L"imported", counts.imported)
        .Field(L"aliased", counts.aliased)
        .Field(L"skipped", counts.skipped)
        .Field(L"failed", counts.failed)
        .EndObject();
    WriteOutput(json.Document());
}
