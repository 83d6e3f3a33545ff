#include "workspace/SectionRegistry.h"

const SectionRegistry::Entry* SectionRegistry::find(SidebarSection section) const {
    for (const Entry& entry : m_entries) {
        if (entry.section == section) {
            return &entry;
        }
    }
    return nullptr;
}
