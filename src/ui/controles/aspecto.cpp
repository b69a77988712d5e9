#include "ui/controles/aspecto.h"

#include <array>
#include <string_view>
#include <utility>

#include <QLibraryInfo>
#include <QLocale>
#include <QPalette>
#include <QScreen>
#include <QStyleFactory>
#include <QTranslator>
#include <QWidget>

using namespace Qt::StringLiterals;

namespace quimo::ui {

namespace {

struct Colores {
    QRgb ventana;
    QRgb base;
    QRgb alterna;
    QRgb boton;
    QRgb texto;
    QRgb apagado;
    QRgb resalte;
};

constexpr Colores kClaro = {0xFFF3F1EE, 0xFFFFFFFF, 0xFFF7F4F0, 0xFFEDEAE6,
                            0xFF22201E, 0xFF96918B, 0xFFB5482A};
// Fields are lighter than what they stand on: the style draws their edges darker than that.
constexpr Colores kOscuro = {0xFF2A2826, 0xFF3B3835, 0xFF413E3A, 0xFF45423E,
                             0xFFECE7E1, 0xFF86807A, 0xFFC8613F};

/// The few texts of Qt's dialogs that its own Spanish lacks.
class Suplemento final : public QTranslator {
public:
    using QTranslator::QTranslator;
    bool isEmpty() const override { return false; }  // NOLINT(readability-identifier-naming)
    QString translate(const char* contexto, const char* original, const char* /*aclaracion*/,
                      int /*n*/) const override {  // NOLINT(readability-identifier-naming)
        if (std::string_view(contexto) != "QAbstractFileIconProvider") return {};
        static constexpr std::array<std::pair<std::string_view, QStringView>, 7> kTextos = {{
            {"Folder", u"Carpeta"},
            {"File Folder", u"Carpeta"},
            {"Drive", u"Unidad"},
            {"File", u"Archivo"},
            {"%1 File", u"Archivo %1"},
            {"Unknown", u"Desconocido"},
            {"Shortcut", u"Acceso directo"},
        }};
        for (const auto& [ingles, espanol] : kTextos) {
            if (ingles == original) return espanol.toString();
        }
        return {};
    }
};

QPalette Paleta(const Colores& c) {
    QPalette paleta;
    paleta.setColor(QPalette::Window, QColor::fromRgba(c.ventana));
    paleta.setColor(QPalette::Base, QColor::fromRgba(c.base));
    paleta.setColor(QPalette::AlternateBase, QColor::fromRgba(c.alterna));
    paleta.setColor(QPalette::ToolTipBase, QColor::fromRgba(c.base));
    paleta.setColor(QPalette::Button, QColor::fromRgba(c.boton));
    for (const auto papel :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        paleta.setColor(papel, QColor::fromRgba(c.texto));
        paleta.setColor(QPalette::Disabled, papel, QColor::fromRgba(c.apagado));
    }
    paleta.setColor(QPalette::PlaceholderText, QColor::fromRgba(c.apagado));
    paleta.setColor(QPalette::Highlight, QColor::fromRgba(c.resalte));
    paleta.setColor(QPalette::Link, QColor::fromRgba(c.resalte));
    paleta.setColor(QPalette::HighlightedText, Qt::white);
    paleta.setColor(QPalette::Disabled, QPalette::Highlight, QColor::fromRgba(c.apagado));
    const QColor boton = QColor::fromRgba(c.boton);
    paleta.setColor(QPalette::Light, boton.lighter(120));
    paleta.setColor(QPalette::Midlight, boton.lighter(110));
    paleta.setColor(QPalette::Mid, boton.darker(130));
    paleta.setColor(QPalette::Dark, boton.darker(160));
    paleta.setColor(QPalette::Shadow, boton.darker(250));
    return paleta;
}

}  // namespace

bool PonerIdioma(QApplication& aplicacion) {
    QLocale::setDefault(QLocale(QLocale::Spanish, QLocale::Mexico));
    auto* const traductor = new QTranslator(&aplicacion);
    if (!traductor->load(u"qtbase_es"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        return false;
    }
    return QCoreApplication::installTranslator(traductor) &&
           QCoreApplication::installTranslator(new Suplemento(&aplicacion));
}

void PonerTema(QApplication& /*aplicacion*/) {
    const QString tema = qEnvironmentVariable("QUIMO_TEMA");
    if (tema != u"claro"_s && tema != u"oscuro"_s) return;
    // The desktop's own style may not follow a palette.
    QApplication::setStyle(QStyleFactory::create(u"Fusion"_s));
    QApplication::setPalette(Paleta(tema == u"oscuro"_s ? kOscuro : kClaro));
}

void Centrar(QWidget& ventana) {
    ventana.adjustSize();
    const QRect pantalla = ventana.screen()->availableGeometry();
    ventana.move(pantalla.center() - QRect(QPoint(), ventana.size()).center());
}

int AltoDeRenglon(const QWidget& rejilla) {
    constexpr int kAire = 8;
    return rejilla.fontMetrics().height() + kAire;
}

}  // namespace quimo::ui
