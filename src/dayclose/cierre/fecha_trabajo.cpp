#include "dayclose/cierre/fecha_trabajo.h"

using namespace Qt::StringLiterals;

namespace quimo::dayclose {

namespace {

bool TerminaElMes(int dia, int mes) {
    constexpr int kFebrero = 2;
    switch (dia) {
        case 29:
            return mes == kFebrero;
        case 30:
            return mes == 4 || mes == 6 || mes == 9 || mes == 11;
        case 31:
            return true;
        default:
            return false;
    }
}

}  // namespace

QString SiguienteFechaTrabajo(const QString& fecha) {
    int dia = fecha.left(2).toInt();
    int mes = fecha.mid(2, 2).toInt();
    int ano = fecha.mid(4).toInt();
    if (TerminaElMes(dia, mes)) {
        dia = 1;
        ++mes;
    } else {
        ++dia;
    }
    if (mes == 13 && dia == 1) ++ano;
    return u"%1%2%3"_s.arg(dia, 2, 10, QLatin1Char('0'))
        .arg(mes, 2, 10, QLatin1Char('0'))
        .arg(ano, 4, 10, QLatin1Char('0'));
}

}  // namespace quimo::dayclose
