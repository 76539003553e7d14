// The mail-log parser: follows every message through its events and writes the day files.
#pragma once

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <memory>

#include "common/LogFileParser.h"
#include "common/Msg.h"
#include "common/Usuario.h"
#include "common/auxiliar.h"
#include "common/diario.h"
#include "common/relatorio.h"
#include "misc/tabela.h"

class Corrida;
class Relatos;

// One file a stage: life and domains (.cpp), the line (_linha), its events (_eventos; their public
// handlers: _portas), the periods of a day and its files (_periodos), the statistics file
// (_estatistica), what is carried over (_retomada); then the reports. Refusals are traced to
// debugOut and end in CR LF.
class LogMailFileParser : public LogFileParser {
  public:
    // The day's compact file; null when it could not be created. Each line is handed to the stream
    // by the handler of its event, so it may be flushed, replaced or closed between two events.
    std::FILE* compact_logfile;
    std::FILE* statistic_logfile;  // the day's statistics file while it is written
    Tabela<Usuario> Lista_usu;     // users of the day, newest first
    Tabela<Msg> Lista_msg;         // messages in flight, newest first
    DList<Domain> domains;         // local mail domains
    time_t* period_limit;          // end of each period of the day, exclusive; sfile_num_periods
    unsigned sfile_num_periods;
    unsigned first_period;  // of the first counted event
    unsigned last_period;   // of the latest counted event
    bool first_period_ok;   // first_period was set; never cleared again
    char compact_fname_prefix[81];
    char stat_fname_prefix[81];  // not used: the statistics file's name is fixed

    LogMailFileParser();
    // Frees the domains. The tables are emptied by consolidate.
    virtual ~LogMailFileParser();

    // Adds the local domains of a list separated by ';', each cut to 300 bytes, the last one first.
    // The list is cut in place. False for null.
    bool add_domain(char* list);

    // LogFileParser::consolidate; afterwards, whatever its outcome, both tables are empty.
    bool consolidate(const char* lastConsolidFile);

    // Opens the compact file of the day of lastConsolid. False when it cannot be created: the day's
    // events are then followed without it.
    bool createFiles() override;
    // Classifies the line in osBuf.lbuf and hands it to its handler. Always 1.
    int parser() override;
    // Writes the statistics file, retires finished messages and users without one in flight. False
    // when a day file could not be created or written.
    bool dumpFiles() override;
    // Writes the point and the messages in flight. When that fails, the old file stays whole and
    // stderr tells why. False only for a null path.
    bool createLastConsolidFile(const char* last_consolid_file) override;
    // Reads the messages in flight. Each becomes one that is finished at the next dump, without its
    // sender; a file that records none yields one with an empty id. False only for a null stream.
    bool readExtraInfo(std::FILE* fp) override;
    // Takes the lines apart and fetches the records that they name.
    void antecipa(const LeitorLinhas::Trecho* linhas, std::size_t n) final;

    // Handlers of the events, called with the line still in osBuf.lbuf, whose stamp gives the
    // event's time; `T` is that time in hexadecimal, for the compact line. Each writes its compact
    // line, then updates the tables. 0, with a refusal traced and nothing done, when a text is
    // null; else 1.
    //   id: token 3 of the line; tipo, remetente, tamanho: tokens 5, 7, 9; destinatario: token 5.
    int handle_MAILQ_SUBMIT(const char* T, const char* id, const char* tipo, const char* remetente,
                            const char* tamanho);
    int handle_MAILQ_OK(const char* T, const char* id, const char* destinatario);
    int handle_MAILQ_END(const char* T, const char* id);
    int handle_MAILSMTP_DELIVER(const char* T, const char* id);
    int handle_MAILSMTP_OK(const char* T, const char* id, const char* destinatario);
    int handle_MAILSMTP_END(const char* T, const char* id);
    int handle_MAILSMTP_ERROR_CONNECT(const char* T, const char* id, const char* texto);
    int handle_MAILSMTP_ERROR_SENDER(const char* T, const char* id, const char* texto);
    int handle_MAILSMTP_ERROR_DEST(const char* T, const char* id, const char* texto);
    int handle_MAILSMTP_ERROR_FINAL(const char* T, const char* id, const char* texto);
    int handle_MAILSMTP_ERROR_DATA(const char* T, const char* id);
    int handle_MAILSMTP_ERROR_HELO(const char* T, const char* id, const char* texto);
    int handle_MAILSMTP_ERROR_SIZE(const char* T, const char* id);
    int handle_MAILSMTP_ERROR_DOMAIN(const char* T, const char* id, const char* texto);
    int handle_MAILSMTP_RETRY_DEST(const char* T, const char* id, const char* texto);
    int handle_SPAM(const char* T, const char* id);
    int handle_ANTIVIRUS_VIRUS(const char* T, const char* id);

    // Removes the pending errors that an accepted delivery settles: SENDER, HELO, CONNECT and
    // DOMAIN with this text (the recipient's domain; null finds none), and one DATA error. Refused
    // recipients stay. Null `m` does nothing.
    void remover_error(Msg* m, const char* texto);

    // Periods a day, 0 meaning 24. Makes last_period one past the last and frees earlier limits.
    void set_sfile_num_periods(unsigned n);
    // False, and nothing changed, when there is no such period.
    bool setLastPeriod(unsigned p);
    // Computes the limits of the day of lastConsolid and resets first_period and last_period.
    void calculatePeriodLimits();
    // The period that holds `t`: the first one before the day, the last one after it. Moves
    // first_period and last_period, so it is asked only when something counts.
    unsigned getPeriodByTime(time_t t);
    // Opens the day file of `prefix` into *fp, making the month's directory (0755) if need be.
    // False, and *fp null, when that fails.
    bool createFile(std::FILE** fp, const char* prefix);

    // Days: the day files of a range, [start, end] in Unix seconds (_leitura.cpp). Fills `files`
    // with the paths of one file each 86400 s from `start` while not later than `end`, by UTC; the
    // caller gives (end - start) / 86400 + 2 entries with null paths and frees the paths (new
    // char[]).
    void getFiles(InputFiles* files, const char* prefix, time_t start, time_t end);

    // Appends a row of totals for each day that has a statistics file to `m_day`; or, when users
    // are asked for, a row for each of their days to their own lists. False when start > end.
    bool get_msgs_per_day(time_t start, time_t end, DList<MsgsData>* m_day,
                          DList<MsgsDayUser>* msgs_day_user);
    // Reads statistics files in one of three ways: users by day, else one user by hour (24 rows a
    // file), else totals by day. False for null `files` or start > end.
    bool parse_consolid_files(InputFiles* files, time_t start, time_t end, DList<MsgsData>* m_day,
                              DList<MsgsDayUser>* msgs_day_user, DList<MsgsData>* m_hour,
                              char* user);

    // Replays compact files for a report (_replay.cpp): every line from the first one not earlier
    // than `start` on, in each file up to the first one later than `end`. 0 for null `files` or
    // `p`, else 1.
    int parse_compact_files(InputFiles* files, long start, long end, ReportType type, params* p);

    // The history of one message (_trace.cpp), told into the caller's empty record; its id is taken
    // from a SUBMIT or VIRUS line and stays as it was when none is in range. 0 for a null argument
    // or start > end, else 1. The handlers answer 0 when the line has too few fields.
    int msg_trace(const char* msg_id, long start, long end, Msg* m);
    int msg_trace_handle_SUBMIT(const char* id, long t, Msg* m, char** campos, int n);
    int msg_trace_handle_OK(const char* id, const char* destinatario, long t, Msg* m, char** campos,
                            int n);
    int msg_trace_handle_ERROR_DEST(const char* id, const char* destinatario, long t, Msg* m,
                                    char** campos, int n);
    int msg_trace_handle_ERROR_FINAL(const char* id, long t, Msg* m, char** campos, int n);
    int msg_trace_handle_ERROR(const char* id, long t, Msg* m, char** campos, int n,
                               ErrorType tipo);
    int msg_trace_handle_END(const char* id, long t, Msg* m, char** campos, int n);
    int msg_trace_handle_VIRUS(const char* id, long t, Msg* m, char** campos, int n);

    // Messages sent by the senders and received by the recipients named (_usuario.cpp), comma lists
    // of prefixes, or null; narrowed to one id (or null) and to sizes in KiB (0: no bound). Rows
    // are added at the front of `msgs`, or changed there by id. 0 for null `msgs` or start > end,
    // else 1.
    int get_user_msgs(const char* destinatarios, const char* remetentes, const char* msg_id,
                      int min_kb, int max_kb, long start, long end, DList<UserMsgs>* msgs);
    int user_msgs_handle_SUBMIT(DList<Usuario>* remetentes, DList<Usuario>* destinatarios,
                                unsigned min_kb, unsigned max_kb, const char* msg_id, long t,
                                DList<UserMsgs>* msgs, char** campos, int n);
    int user_msgs_handle_OK(DList<Usuario>* destinatarios, unsigned min_kb, unsigned max_kb,
                            const char* msg_id, long t, DList<UserMsgs>* msgs, char** campos,
                            int n);
    int user_msgs_handle_END(long t, DList<UserMsgs>* msgs, char** campos, int n);
    int user_msgs_handle_VIRUS(long t, DList<UserMsgs>* msgs, char** campos, int n);
    int user_msgs_handle_ERROR(long t, DList<UserMsgs>* msgs, char** campos, int n, ErrorType tipo);

    // Messages by hour of the day (_hora.cpp): 24 rows for the whole range, or, for one user, 24
    // rows for each of its days. 0 for a null argument or start > end, else 1.
    int get_msgs_per_hour(long start, long end, DList<MsgsData>* m_hour);
    int get_msgs_per_hour_per_user(long start, long end, const char* user, DList<MsgsData>* m_hour);
    int msgs_per_hour_handle_SUBMIT(long t, MsgsData* hora, char** campos, int n);
    int msgs_per_hour_handle_DELIVER(long t, MsgsData* hora, const char* id);
    int msgs_per_hour_handle_OK(long t, const char* user, MsgsData* hora, char** campos, int n);
    int msgs_per_hour_handle_END(MsgsData* hora, const char* user, char** campos, int n);
    int msgs_per_hour_handle_ERROR(long t, MsgsData* hora, char** campos, int n);
    int msgs_per_hour_handle_VIRUS(long t, MsgsData* hora, char** campos, int n);
    int msgs_per_hour_handle_SPAM(long t, MsgsData* hora, char** campos, int n);

  private:
    friend class Corrida;
    friend class Relatos;

    // The run in progress. Whoever hands in events without consolidate() gets one that owns
    // nothing.
    Corrida& corrida();

    time_t passo() const { return 86400 / sfile_num_periods; }
    bool fecha(std::FILE*& arquivo);
    bool sincroniza_mes();

    std::unique_ptr<Relatos> relatos_;
    Corrida* corrida_ = nullptr;       // during consolidate()
    std::unique_ptr<Corrida> avulsa_;  // outside of it
};
