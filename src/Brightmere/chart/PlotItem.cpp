#include "PlotItem.h"

#include "XYGraph.h"
#include <Brightmere/core/BMLogger.h>
#include <Brightmere/ui/BrightmereColor.h>
#include <Brightmere/ui/BrightmereView.h>

#include <QChartView>
#include <QEvent>
#include <QGraphicsScene>
#include <QWidget>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

const QString kModule = QStringLiteral("PlotItem");
const QSize kImageSize(375, 240);

std::weak_ordering compareCaseInsensitive(const QString &a, const QString &b)
{
    const int order = QString::compare(a, b, Qt::CaseInsensitive);
    return order < 0 ? std::weak_ordering::less
                     : (order > 0 ? std::weak_ordering::greater : std::weak_ordering::equivalent);
}

} // namespace

PlotItem::PlotItem(QObject *parent)
    : QObject(parent)
{
}

PlotItem::~PlotItem()
{
    killGraph();
}

void PlotItem::registerPlotItem(const QMetaObject *plotItemClass)
{
}

QList<XYGraph *> PlotItem::graphs() const
{
    QList<XYGraph *> alive;
    for (const QPointer<XYGraph> &graph : m_graphs) {
        if (graph)
            alive.append(graph);
    }
    return alive;
}

void PlotItem::addGraph(XYGraph *graph, QChartView *hostingView)
{
    if (!graph) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no graph to add");
        return;
    }
    if (!m_graphs.contains(graph))
        m_graphs.append(graph);
    if (!hostingView)
        return;
    // A view always shows some chart; one it made for itself is dropped.
    QPointer<QChart> previous = hostingView->chart();
    hostingView->setChart(graph);
    const bool previousIsOurs = std::any_of(m_graphs.cbegin(), m_graphs.cend(), [&previous](const QPointer<XYGraph> &g) {
        return static_cast<QChart *>(g.data()) == previous.data();
    });
    if (previous && previous != graph && !previousIsOurs && !previous->scene())
        delete previous.data();
}

void PlotItem::addGraph(XYGraph *graph)
{
    addGraph(graph, nullptr);
}

void PlotItem::killGraph()
{
    for (const QPointer<XYGraph> &graph : std::as_const(m_graphs)) {
        if (graph)
            graph->setAnimationOptions(QChart::NoAnimation);
    }
    if (m_hostWidget)
        m_hostWidget->removeEventFilter(this);
    m_hostWidget.clear();
    if (m_defaultLayerHostingView) {
        QChartView *view = m_defaultLayerHostingView;
        m_defaultLayerHostingView.clear();
        view->hide();
        view->setParent(nullptr);
        // The graphs are ours to delete, not the view's.
        if (QChart *hosted = view->chart(); hosted && hosted->scene())
            hosted->scene()->removeItem(hosted);
        delete view;
    }
    const QList<QPointer<XYGraph>> graphs = std::exchange(m_graphs, {});
    for (const QPointer<XYGraph> &graph : graphs) {
        if (!graph)
            continue;
        if (graph->scene())
            graph->scene()->removeItem(graph);
        delete graph.data();
    }
}

std::weak_ordering PlotItem::titleCompare(const PlotItem &other) const
{
    const std::weak_ordering bySection = compareCaseInsensitive(m_section, other.m_section);
    return bySection != 0 ? bySection : compareCaseInsensitive(m_title, other.m_title);
}

void PlotItem::setTitleDefaultsForGraph(XYGraph *graph, const QRectF &bounds)
{
    if (!graph) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no graph for the title defaults");
        return;
    }
    const qreal height = bounds.height();
    graph->setTitle(m_title);
    QFont font = graph->titleFont();
    font.setFamily(QStringLiteral("Helvetica"));
    font.setBold(true);
    font.setPixelSize(std::max(1, int(std::lround(height / 20.0 * Brightmere::View::textScale()))));
    graph->setTitleFont(font);
    graph->setTitleBrush(Brightmere::Color::fixedColor(Brightmere::Color::named(QStringLiteral("medium_gray")),
                                                       Brightmere::Color::named(QStringLiteral("fz_chart_back"))));
    graph->setTitleDisplacement(QPointF(0.0, std::round(height / 18.0)));
}

void PlotItem::setPaddingDefaultsForGraph(XYGraph *graph, const QRectF &bounds)
{
    if (!graph) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no graph for the padding defaults");
        return;
    }
    const qreal padding = std::round(std::min(bounds.width(), bounds.height()) / 20.0);
    const qreal top = graph->titleDisplacement().y() > 0.0 ? padding * 2.0 : padding;
    graph->setPadding(QMarginsF(padding, top, padding, padding));
}

QImage PlotItem::image()
{
    if (m_defaultLayerHostingView) {
        m_cachedImage = m_defaultLayerHostingView->grab().toImage();
        return m_cachedImage;
    }
    QWidget canvas;
    canvas.setAttribute(Qt::WA_DontShowOnScreen);
    canvas.resize(kImageSize);
    renderInView(&canvas, nullptr, false);
    canvas.show();
    m_cachedImage = canvas.grab().toImage();
    killGraph();
    return m_cachedImage;
}

void PlotItem::applyTheme(const ChartTheme::Ptr &theme, XYGraph *graph, const ChartTheme::Ptr &defaultTheme)
{
    if (theme == ChartTheme::nullPlaceholder())
        return;
    const ChartTheme::Ptr &chosen = theme ? theme : defaultTheme;
    if (!chosen) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no theme and no default theme; the graph keeps its look");
        return;
    }
    chosen->applyThemeToGraph(graph);
}

void PlotItem::renderInView(QWidget *view, const ChartTheme::Ptr &theme, bool animated)
{
    killGraph();
    if (!view) {
        BMLogger::sharedInstance().logFromModule(kModule, 3, "no view to render in");
        return;
    }
    auto *hostingView = new QChartView(view);
    hostingView->setGeometry(view->rect());
    hostingView->setFrameShape(QFrame::NoFrame);
    hostingView->setRenderHint(QPainter::Antialiasing);
    // Whatever the graph leaves clear shows the widget behind it.
    hostingView->setBackgroundBrush(Qt::NoBrush);
    hostingView->viewport()->setAutoFillBackground(false);
    // The chart's items move and change at every sample; an index of their
    // places would be rebuilt all the time and grow stale.
    hostingView->scene()->setItemIndexMethod(QGraphicsScene::NoIndex);
    hostingView->show();
    m_defaultLayerHostingView = hostingView;
    m_hostWidget = view;
    view->installEventFilter(this);

    generateData();
    renderInLayer(hostingView, theme, animated);
    // A picture, not a control: the keyboard passes it by. (Setting the
    // chart gives the view a focus policy again, so this comes last.)
    hostingView->setFocusPolicy(Qt::NoFocus);
}

void PlotItem::renderInLayer(QChartView *layerHostingView, const ChartTheme::Ptr &theme, bool animated)
{
    BMLogger::sharedInstance().logFromModule(kModule, 2, "PlotItem:renderInLayer: Override me");
}

void PlotItem::reloadData()
{
    for (XYGraph *graph : graphs())
        graph->reloadData();
}

bool PlotItem::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize && watched == m_hostWidget && m_defaultLayerHostingView)
        m_defaultLayerHostingView->setGeometry(m_hostWidget->rect());
    return QObject::eventFilter(watched, event);
}
