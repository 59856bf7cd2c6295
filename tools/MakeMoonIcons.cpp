// make-moon-icons: draws the eight phase icons of the main window's status band, moon01.ico
// (new) to moon08.ico (waning crescent), into a folder (resources/ of the source tree).
//
//   make-moon-icons DIR
//
// Each icon is the Moon as seen from the north at one of the principal phases: the lit part
// bounded by the limb and the terminator, an ellipse whose half-width is the radius times the
// cosine of the phase angle; the dark part stays faintly visible. 64 x 64 pixels.

#include <QCoreApplication>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <QPainterPath>

#include <cmath>
#include <cstdio>

namespace {

constexpr int kSize = 64;
constexpr double kSynodicMonth = 29.53;

// The ages the eight icons show: the eight principal phases, an eighth of a month apart (new,
// waxing crescent, first quarter, waxing gibbous, full, waning gibbous, last quarter, waning
// crescent), so that the crescents stay visible at the status band's size.
constexpr double kAges[8] = {0.0, 3.69, 7.38, 11.07, 14.77, 18.46, 22.15, 25.84};

QImage DrawPhase(double ageDays)
{
    QImage image(kSize, kSize, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const double r = kSize / 2.0 - 2;
    const QPointF centre(kSize / 2.0, kSize / 2.0);
    p.setPen(QPen(QColor(120, 120, 130), 1.2));
    p.setBrush(QColor(45, 45, 55));
    p.drawEllipse(centre, r, r);

    // Phase angle from new (0) through full (pi) back to new (2 pi).
    const double angle = 2 * M_PI * ageDays / kSynodicMonth;
    const double terminator = r * std::cos(angle); // half-width of the terminator's ellipse
    const bool waxing = angle < M_PI;
    QPainterPath lit;
    // The lit limb: the right half while waxing, the left half while waning.
    const QRectF disc(centre.x() - r, centre.y() - r, 2 * r, 2 * r);
    lit.moveTo(centre.x(), centre.y() - r);
    lit.arcTo(disc, 90, waxing ? -180 : 180);
    // Back to the top along the terminator: half an ellipse bulging towards the lit limb
    // before first quarter and after last quarter, away from it in between.
    const int steps = 64;
    for (int i = 1; i <= steps; ++i) {
        const double t = M_PI * i / steps; // from the bottom to the top
        const double y = centre.y() + r * std::cos(t);
        const double x = std::sin(t) * terminator;
        lit.lineTo(waxing ? centre.x() + x : centre.x() - x, y);
    }
    lit.closeSubpath();
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(240, 236, 210));
    p.drawPath(lit);
    return image;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: make-moon-icons DIR\n");
        return 2;
    }
    const QString dir = QString::fromLocal8Bit(argv[1]);
    for (int i = 0; i < 8; ++i) {
        const QString file = dir + QString("/moon%1.ico").arg(i + 1, 2, 10, QChar('0'));
        QImageWriter writer(file, "ico");
        if (!writer.write(DrawPhase(kAges[i]))) {
            std::fprintf(stderr, "make-moon-icons: %s: %s\n", qPrintable(file),
                         qPrintable(writer.errorString()));
            return 1;
        }
    }
    return 0;
}
