#include "adapters/sim/InputHooks.h"

#include <algorithm>

namespace kestrum::sim {

template <class Callback>
class InputHooks::Hook : public host::IHook {
  public:
    Hook(std::vector<std::shared_ptr<Callback>>& list, Callback callback)
        : m_list(list), m_callback(std::make_shared<Callback>(std::move(callback))) {
        m_list.push_back(m_callback);
    }
    ~Hook() override { m_list.erase(std::remove(m_list.begin(), m_list.end(), m_callback), m_list.end()); }

  private:
    std::vector<std::shared_ptr<Callback>>& m_list;
    std::shared_ptr<Callback> m_callback;
};

std::unique_ptr<host::IHook> InputHooks::InstallMouseHook(MouseCallback callback) {
    if (m_faults.Fails(u"hooks.InstallMouseHook")) return nullptr;
    return std::make_unique<Hook<MouseCallback>>(m_mouse, std::move(callback));
}

std::unique_ptr<host::IHook> InputHooks::InstallKeyHook(KeyCallback callback) {
    if (m_faults.Fails(u"hooks.InstallKeyHook")) return nullptr;
    return std::make_unique<Hook<KeyCallback>>(m_key, std::move(callback));
}

std::int32_t InputHooks::CallNextHook(std::int32_t) {
    ++chained;
    return nextAnswer;
}

std::int32_t InputHooks::Mouse(std::int32_t code, std::int32_t message, const host::MouseRecord& record) {
    std::int32_t answer = 0;
    auto hooks = m_mouse;  // a handler may remove its hook
    for (const auto& hook : hooks) answer = (*hook)(code, message, record);
    return answer;
}

std::int32_t InputHooks::Key(std::int32_t code, std::int32_t keyCode, std::uint32_t flags) {
    std::int32_t answer = 0;
    auto hooks = m_key;
    for (const auto& hook : hooks) answer = (*hook)(code, keyCode, flags);
    return answer;
}

void InputHooks::PressKey(std::int32_t keyCode) {
    constexpr std::uint32_t kGoingUp = 0x80000000;
    m_loop.Post([this, keyCode] {
        Key(0, keyCode, 0);
        Key(0, keyCode, kGoingUp);
    });
}

}  // namespace kestrum::sim
