// All forms of a session: makes each on first use, keeps the order in which they were loaded, unloads them.
#pragma once

#include <map>
#include <memory>
#include <typeindex>
#include <vector>

#include "ui/Form.h"

namespace kestrum::ui {

class Forms {
  public:
    /// Both ports outlive the collection.
    Forms(host::IFormPresenter& presenter, host::IEventLoop& loop) : m_presenter(presenter), m_loop(loop) {}
    /// Takes every form down without asking it.
    ~Forms();
    Forms(const Forms&) = delete;
    Forms& operator=(const Forms&) = delete;

    /// The session's form of class F, made with `F(context)` on first use and anew after it was unloaded (and its
    /// handlers have returned). Getting a form does not load it.
    template <class F, class C>
    F& Get(const C& context) {
        std::unique_ptr<Form>& slot = m_forms[std::type_index(typeid(F))];
        if (slot && slot->IsSpent()) slot.reset();
        if (!slot) slot = std::make_unique<F>(context);
        return static_cast<F&>(*slot);
    }

    /// Compares without letter case.
    bool IsFormLoaded(StringView name) const { return Find(name) != nullptr; }
    /// The loaded form of that name (without letter case), null if there is none.
    Form* Find(StringView name) const;
    std::size_t Count() const { return m_loaded.size(); }
    /// From 0, in the order of loading.
    Form& At(std::size_t index) const { return *m_loaded.at(index); }
    /// Unloads from the last loaded to the first. A form that refuses stays.
    void UnloadAll();

    host::IFormPresenter& Presenter() const { return m_presenter; }
    host::IEventLoop& Loop() const { return m_loop; }

  private:
    friend class Form;
    void Joined(Form& form) { m_loaded.push_back(&form); }
    void Left(Form& form);

    host::IFormPresenter& m_presenter;
    host::IEventLoop& m_loop;
    std::vector<Form*> m_loaded;
    std::map<std::type_index, std::unique_ptr<Form>> m_forms;
};

}  // namespace kestrum::ui
