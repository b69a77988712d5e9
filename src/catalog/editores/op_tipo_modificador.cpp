#include "base/dinero.h"
#include "catalog/editores/editores.h"
#include "data/valores.h"

using namespace Qt::StringLiterals;

namespace quimo::catalog {

namespace {

constexpr qsizetype kLargoPrecio = 15;
constexpr std::int64_t kCentavo = 100;  // ten-thousandths

/// "$1,234.50"; amounts that cents cannot tell keep their four decimals.
QString MostrarPrecio(const QVariant& guardado) {
    const QString texto = data::TextoDeValor(guardado);
    const auto precio = base::Dinero::DeTexto(texto.toStdString());
    if (!precio) return texto;
    if (precio->Diezmilesimas() % kCentavo != 0) return u'$' + texto;
    return QString::fromStdString(precio->AMoneda());
}

/// Digits and points, and the sign of a price that was stored with one.
QString ReducirPrecio(const QString& escrito) {
    QString reducido;
    for (const QChar letra : escrito) {
        if ((letra >= u'0' && letra <= u'9') || letra == u'.' || letra == u'-') reducido += letra;
    }
    return reducido;
}

QString PrecioDemasiadoGrande(const QString& reducido) {
    return reducido.size() > kLargoPrecio ? u"El precio es demasiado grande"_s : QString();
}

constexpr MascaraDef kPrecio = {&MostrarPrecio, &ReducirPrecio, &PrecioDemasiadoGrande};

constexpr ItemCodigo kEstados[] = {
    {u"Activo", u"A"}, {u"Suspendido", u"S"}, {u"Descontinuado", u"D"}};

constexpr CampoDef kCampos[] = {
    Clave(u"txtId", u"ID_Tipo_Modificador"),
    Texto(u"TxtNombre", u"Nombre_Tipo_Modificador", u"Nombre").Tag(u"NoVacio"),
    Codigo(u"cmbEstado", u"txtEstado", u"Estado_Modificador", u"Estado", kEstados),
    Numero(u"MskPrecio", u"Precio_Tipo_Modificador", u"Precio")
        .Tag(u"Numerico")
        .Obligatorio(u"de Precio")
        .Mascara(kPrecio),
};

constexpr ColumnaFiltro kFiltro[] = {
    {u"Id Modificador", u"ID_Tipo_Modificador", u"ID_Tipo_Modificador"},
    {u"Nombre", u"Nombre_Tipo_Modificador", u"Nombre_Tipo_Modificador"},
    {u"Estado", u"Estado_Modificador", u"Estado_Modificador", kEstados},
    {u"Precio", u"Precio_Tipo_Modificador", u"Precio_Tipo_Modificador"},
};

}  // namespace

constexpr EditorRevisado kOpTipoModificador = Revisado({
    .nombre = u"OpTipoModificador",
    .comando = u"mnuOpModificadores",
    .titulo = u"Modificadores",
    .tabla = u"Tipo_Modificador",
    .consulta_clave = u"SELECT MAX(ID_Tipo_Modificador)+1 AS Clave FROM Tipo_Modificador",
    .campos = kCampos,
    // The text of the payment types, word for word: docs/decisions/0003.
    .repetido = u"Ya existe el nombre del tipo de pago",
    .filtro = {u"Tipo_Modificador WHERE", kFiltro},
});

}  // namespace quimo::catalog
