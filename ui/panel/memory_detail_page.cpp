// SPDX-License-Identifier: MIT
#include "ui/panel/memory_detail_page.h"

#include <cstdint>
#include <string>

#include "core/records/text.h"
#include "ui/panel/memory_pressure.h"
#include "ui/panel/page_builder.h"
#include "ui/panel/panel_figures.h"

namespace tarnwick {

Page memoryDetailPage(const MemoryDetailInputs& inputs,
                      const platform::ByteCountFormatter& formatter) {
    const MemoryInfo& memory = inputs.memoryInfo;
    PageBuilder page(inputs.enabledActions);
    page.addDetailHeader("Memory Details");
    page.add("pressure", kBlockSpacing,
             InfoRow{"Estimated Pressure", std::string(word(estimatedPressure(memory)))});

    page.addDivider("divider.breakdown");
    page.add("breakdown", kBlockSpacing, GroupTitle{"Memory Breakdown"});
    const auto addRow = [&](const char* id, const char* label, std::uint64_t bytes) {
        page.add(id, kRowSpacing, InfoRow{label, memoryText(bytes, formatter)});
    };
    addRow("breakdown.physical", "Physical Memory", memory.total);
    addRow("breakdown.used", "Memory Used", memory.used);
    addRow("breakdown.cached", "Cached Files", memory.cached);
    addRow("breakdown.swap", "Swap Used", memory.swapUsed);
    addRow("breakdown.app", "App Memory", memory.app);
    addRow("breakdown.wired", "Wired Memory", memory.wired);
    addRow("breakdown.compressed", "Compressed", memory.compressed);

    page.addDivider("divider.topMemory");
    page.add("topMemory", kBlockSpacing, GroupTitle{"What's Using Memory?"});
    page.add("topMemory.list", kRowSpacing,
             TopAppsList{inputs.topMemoryProcesses, 0,
                         [total = memory.total, &formatter](const AppProcessInfo& process) {
                             const double share = total == 0
                                                      ? 0
                                                      : static_cast<double>(process.memoryUsage) /
                                                            static_cast<double>(total) * 100;
                             return percentText(share, 1) + " (" +
                                    memoryText(process.memoryUsage, formatter) + ")";
                         }});
    return page.take();
}

}  // namespace tarnwick
