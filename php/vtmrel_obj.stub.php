<?php

/** @generate-class-entries */

/**
 * The reports of one mail relay: consolidates the dispatcher's logs and answers from the day files.
 *
 * @not-serializable
 */
#[AllowDynamicProperties]
final class vt_mrel
{
    public function __construct() {}

    /**
     * The product's installation directory, from the registry.
     *
     * @return string at most 127 bytes; "" when it is not recorded
     */
    public function getPontaraPath() {}

    /**
     * From now on, consolidate up to the present moment and also again on the same day. Cannot be
     * taken back.
     *
     * @return true
     */
    public function setForceMode() {}

    /**
     * Root of the output tree; "DAT" until set.
     *
     * @return string
     */
    public function getDataDir() {}

    /**
     * At most 128 bytes. The directory is made (one level, mode 0755) when it cannot be opened.
     *
     * @param string $dirpath
     * @return bool false when refused or not made
     */
    public function setDataDir($dirpath) {}

    /**
     * Directory of the dispatcher's logs; "LOGS" until set.
     *
     * @return string
     */
    public function getLogDir() {}

    /**
     * At most 128 bytes; need not exist yet.
     *
     * @param string $dirpath
     * @return bool false when refused
     */
    public function setLogDir($dirpath) {}

    /**
     * The number that setPeriods stored; 0 at first.
     *
     * @return int
     */
    public function getPeriods() {}

    /**
     * Keeps a number (its low 32 bits) for the script; nothing else reads it.
     *
     * @param int $periods
     * @return true
     */
    public function setPeriods($periods) {}

    /**
     * Adds local mail domains, separated by ";". They last as long as the object.
     *
     * @param string $domain
     * @return bool
     */
    public function add_domain($domain) {}

    /**
     * Consolidates all days up to today's midnight (in force mode: up to now), unless another process
     * is doing so. The point reached is kept in the file named.
     *
     * @param string $lastConsolidFile
     * @return false always
     */
    public function consolidate($lastConsolidFile) {}

    /**
     * Messages per day: a row of totals a day, or, with a comma list of users, a row a user and day.
     * The result set's last_error says "Período incorreto." when the answer is null.
     *
     * @param int $start Unix seconds, at least 1
     * @param int $end Unix seconds, not before $start
     * @param string $users " " for totals
     * @param int $handle of a vt_mrel_itr
     * @return int|null 1 when there are rows, else 0; null for a bad period
     */
    public function msgs_per_day($start, $end, $users, $handle) {}

    /**
     * The messages sent by given senders and received by given recipients (comma lists of prefixes;
     * "" or " " for no such filter).
     *
     * @param string $destinatarios
     * @param string $remetentes
     * @param int $start Unix seconds
     * @param int $end Unix seconds
     * @param string $msg_id only this message; "" or " " for all
     * @param int $min_kb smallest size in KiB; 0 for no bound
     * @param int $max_kb largest size in KiB; 0 for no bound
     * @param int $handle of a vt_mrel_itr
     * @return int 1 when there are rows, else 0
     */
    public function user_msgs($destinatarios, $remetentes, $start, $end, $msg_id, $min_kb, $max_kb, $handle) {}

    /**
     * Messages by hour of the day: 24 rows for all users together, or 24 a day for one.
     *
     * @param int $start Unix seconds
     * @param int $end Unix seconds
     * @param string $user " " for all users
     * @param int $handle of a vt_mrel_itr
     * @return int 1 when there are rows, else 0
     */
    public function msgs_per_hour($start, $end, $user, $handle) {}

    /**
     * The history of one message.
     *
     * @param string $msg_id
     * @param int $start Unix seconds
     * @param int $end Unix seconds
     * @param int $handle of a vt_mrel_itr
     * @return int 1 when it was found, else 0
     */
    public function msg_trace($msg_id, $start, $end, $handle) {}
}
