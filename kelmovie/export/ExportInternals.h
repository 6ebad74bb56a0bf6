#pragma once

#include <KelMovie/KelExportPipeline.h>

#include <memory>

struct KelExportDependencies;

namespace kel
{

/// Access to the parts of a KelExportPipeline that only the module itself uses.
class ExportInternals
{
public:
    /// A pipeline with other encoders.
    static std::unique_ptr<KelExportPipeline> createPipeline(const KelExportRequest &request, KelExportMonitor *monitor,
                                                             const KelExportDependencies &dependencies);
};

} // namespace kel
