#pragma once

#include "Domains/DragSession/DragSessionUserInterface.h"

namespace Vantrope {

class Clock;
class MessageWindowCenter;
class Preferences;

// Makes the Qt windows and views of shelves.
class QtDragSessionUserInterface final : public DragSessionUserInterface {
public:
    struct Dependencies {
        // The messages the coordinators show, by window number.
        MessageWindowCenter& messages;
        Preferences& preferences;
        Clock& clock;
    };

    explicit QtDragSessionUserInterface(const Dependencies& dependencies);

    Parts makeShelf(DragSessionViewDelegate& delegate, const QSizeF& size) override;

private:
    Dependencies m_dependencies;
    quint64 m_lastWindowNumber = 0;
};

} // namespace Vantrope
