// servidor_embebido FILE: serves one embedded database to any driver for SQL Server, on a port of
// loopback that it prints, until its standard input ends. Lets whole programs be run through ODBC
// where there is no SQL Server.

#include <iostream>

#include "apoyo_odbc.h"

int main(int argc, char** argv) {
    if (argc != 2) return 2;
    const quimo::data::odbc::ServidorTds servidor(
        quimo::data::odbc::DeEmbebida(QString::fromLocal8Bit(argv[1])));
    std::cout << servidor.Puerto() << std::endl;
    std::string linea;
    while (std::getline(std::cin, linea)) {
    }
    return 0;
}
