#pragma once

#include <memory>

class KelPlaybackExportDialog;
class QWidget;
struct KelExportDependencies;
struct KelExportRequest;

namespace kel
{

/// What KelPlaybackExportDialog offers to the tests of the module, but not to hosts.
class ExportDialogInternals
{
public:
    static std::unique_ptr<KelPlaybackExportDialog>
    createDialog(const KelExportRequest &request, const KelExportDependencies &dependencies, QWidget *parent = nullptr);
};

} // namespace kel
