#include "ui/Forms.h"

#include <algorithm>

#include "ui/Names.h"

namespace kestrum::ui {

Forms::~Forms() {
    while (!m_loaded.empty()) m_loaded.back()->Discard();
}

Form* Forms::Find(StringView name) const {
    for (Form* form : m_loaded) {
        if (SameName(form->Name(), name)) return form;
    }
    return nullptr;
}

void Forms::UnloadAll() {
    const std::vector<Form*> loaded = m_loaded;
    for (auto form = loaded.rbegin(); form != loaded.rend(); ++form) {
        // An earlier one may have unloaded this one already; its object still stands, for `Get` alone replaces it.
        const bool stillLoaded = std::find(m_loaded.begin(), m_loaded.end(), *form) != m_loaded.end();
        if (stillLoaded) (*form)->Unload();
    }
}

void Forms::Left(Form& form) {
    std::erase(m_loaded, &form);
}

}  // namespace kestrum::ui
