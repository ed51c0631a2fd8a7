#pragma once

#include "Kestro/Cleanup/CleanupModel.h"
#include "Kestro/Statistics/StatsCard.h"
#include "Kestro/Statistics/StatsWindowModel.h"
#include "Kestro/Widgets/Widget.h"

namespace kestro {

/// The card, tile and window of the readings. Main thread.
class StatsWidget final : public Widget {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to a feature")
    Q_PROPERTY(kestro::StatsCard* card READ card CONSTANT)
    Q_PROPERTY(kestro::StatsWindowModel* window READ windowModel CONSTANT)
    Q_PROPERTY(kestro::CleanupModel* cleanup READ cleanup NOTIFY cleanupChanged) ///< while its sheet is open
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged) ///< how a quit went; empty for nothing
public:
    using MakeCleanup = std::function<std::unique_ptr<CleanupModel>()>;
    /// All must outlive it.
    StatsWidget(const PreferenceStore& preferences, StatsWindowModel& window, MakeCleanup makeCleanup);

    StatsCard* card() { return &m_card; }
    StatsWindowModel* windowModel() { return &m_window; }
    CleanupModel* cleanup() const { return m_cleanup.get(); }
    Q_INVOKABLE void openCleanup();
    Q_INVOKABLE void closeCleanup();
    const QString& notice() const { return m_notice; }
    void setNotice(const QString& notice);
    /// Whether the tile shows the readings.
    void setLive(bool live);
    bool isCardShown() const { return m_cardShown; }

    QString cardView() const override { return QStringLiteral("Statistics/StatsCardView"); }
    double bodyHeight(const Look& look) const override;
    WidgetTile tile() const override;
    std::optional<WidgetWindow> window() const override;
    std::shared_ptr<void> windowOpened() override;
    void shown(bool isShown) override;

Q_SIGNALS:
    void noticeChanged();
    void cleanupChanged();
    void cardShownChanged();

private:
    StatsCard m_card;
    StatsWindowModel& m_window;
    MakeCleanup m_makeCleanup;
    std::unique_ptr<CleanupModel> m_cleanup;
    QString m_notice;
    WidgetTile m_lastTile;
    bool m_live = false;
    bool m_cardShown = false;
};

} // namespace kestro
